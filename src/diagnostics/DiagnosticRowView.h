#pragma once

#include "diagnostics/DiagnosticsStyle.h"
#include "platform/Graphics.h"

#include <QWidget>

class QLabel;

namespace glintar::diagnostics {

class SpinnerView;

/// One service: its name, and at the right its state.
class DiagnosticRowView final : public QWidget {
public:
    DiagnosticRowView(const platform::Graphics& graphics, QWidget* parent);

    void show(const DiagnosticNode& node, platform::Appearance appearance);

private:
    const platform::Graphics& graphics_;
    QLabel* name_;
    QWidget* cell_;
    SpinnerView* spinner_;
    QLabel* mark_;
    QLabel* state_;
};

}  // namespace glintar::diagnostics
