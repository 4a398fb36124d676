#include "platform/qt/strip/StripAccessibility.h"

#include "platform/qt/strip/StripItem.h"
#include "platform/qt/strip/StripPicture.h"

#include <QAccessibleWidget>

namespace glintar::platform {

namespace {

/// A button without the focus, which the strip never has.
class ItemForAssistants final : public QAccessibleWidget {
public:
    explicit ItemForAssistants(StripItem& item) : QAccessibleWidget(&item, QAccessible::Button), item_(item) {}

    QStringList actionNames() const override { return {pressAction()}; }

    void doAction(const QString& name) override {
        if (const auto tell = item_.onMouseUp; tell && name == pressAction()) {
            tell(MouseButton::Left);
        }
    }

private:
    StripItem& item_;
};

QAccessibleInterface* describe(const QString&, QObject* object) {
    if (auto* const item = dynamic_cast<StripItem*>(object)) {
        return new ItemForAssistants(*item);
    }
    if (auto* const picture = dynamic_cast<StripPicture*>(object)) {
        return new QAccessibleWidget(picture, QAccessible::Graphic);
    }
    return nullptr;
}

}  // namespace

void describeStripToAssistants() {
    QAccessible::removeFactory(describe);  // twice in the list it would be asked twice
    QAccessible::installFactory(describe);
}

}  // namespace glintar::platform
