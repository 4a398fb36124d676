#pragma once

#include "platform/Graphics.h"
#include "settings/AboutModel.h"

#include <QWidget>

namespace glintar::settings {

/// The "About" tab.
class AboutView final : public QWidget {
public:
    AboutView(AboutModel& model, const platform::Graphics& graphics, QWidget* parent = nullptr);
};

/// The "Contact" tab.
class ContactSettingsView final : public QWidget {
public:
    ContactSettingsView(AboutModel& model, const platform::Graphics& graphics, QWidget* parent = nullptr);
};

}  // namespace glintar::settings
