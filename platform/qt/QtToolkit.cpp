// SPDX-License-Identifier: MIT
#include "QtToolkit.h"

namespace platform::qt {

namespace {

class QtToolkit final : public Toolkit {
public:
    NibContents loadNib(const NSBundle& bundle, const std::u16string& name,
                        const std::shared_ptr<NSObject>& owner) override {
        return qt::loadNib(bundle, name, owner);
    }
    std::shared_ptr<Canvas> makeCanvas(NSSize size) override { return qt::makeCanvas(size); }
    NSSize sizeOfToken(const std::u16string& title, NSControlSize size) override {
        return qt::sizeOfToken(title, size);
    }
    std::unique_ptr<PopoverPeer> makePopoverPeer(const std::shared_ptr<NSPopover>& popover) override {
        return qt::makePopoverPeer(popover);
    }
    std::shared_ptr<const Picture> loadPicture(const std::filesystem::path& file) override {
        return qt::loadPicture(file);
    }
    NSInteger runAlertModally(const NSAlert& alert) override { return qt::runAlertModally(alert); }
};

} // namespace

} // namespace platform::qt

extern "C" platform::Toolkit* imprinterToolkit();

platform::Toolkit* imprinterToolkit() {
    static platform::qt::QtToolkit toolkit;
    return &toolkit;
}
