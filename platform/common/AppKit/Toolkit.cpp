// SPDX-License-Identifier: MIT
// Hands over to the toolkit's library, which is loaded when something is first asked of it.
#include "Toolkit.h"

#include <dlfcn.h>

#include <stdexcept>

namespace platform {

Toolkit::~Toolkit() = default;

namespace {

/// Throws `std::runtime_error` where the library cannot be opened or does not offer what is asked for. Whether it is of
/// the same version is not looked at: the layer's libraries are installed together.
Toolkit& load() {
    // Looked for beside this library. It stays for good: what it has made may outlive any owner of it.
    void* const library = dlopen(IMPRINTER_TOOLKIT, RTLD_NOW | RTLD_LOCAL);
    void* const entry = library ? dlsym(library, toolkitEntry) : nullptr;
    if (!entry)
        throw std::runtime_error(std::string("The toolkit's part of the platform layer cannot be loaded: ") +
                                 dlerror());
    return *reinterpret_cast<Toolkit* (*)()>(entry)();
}

Toolkit& toolkit() {
    static Toolkit& loaded = load();
    return loaded;
}

} // namespace

NibContents loadNibNamedOwner(const NSBundle& bundle, const std::u16string& name,
                              const std::shared_ptr<NSObject>& owner) {
    return toolkit().loadNib(bundle, name, owner);
}

std::shared_ptr<Canvas> makeCanvas(NSSize size) {
    return toolkit().makeCanvas(size);
}

NSSize sizeOfToken(const std::u16string& title, NSControlSize size) {
    return toolkit().sizeOfToken(title, size);
}

std::unique_ptr<PopoverPeer> makePopoverPeer(const std::shared_ptr<NSPopover>& popover) {
    return toolkit().makePopoverPeer(popover);
}

std::shared_ptr<const Picture> loadPicture(const std::filesystem::path& file) {
    return toolkit().loadPicture(file);
}

NSInteger runAlertModally(const NSAlert& alert) {
    return toolkit().runAlertModally(alert);
}

} // namespace platform
