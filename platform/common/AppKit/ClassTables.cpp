// SPDX-License-Identifier: MIT
#include <AppKit/NSButton.h>
#include <AppKit/NSColorWell.h>
#include <AppKit/NSImageView.h>
#include <AppKit/NSMatrix.h>
#include <AppKit/NSPopUpButton.h>
#include <AppKit/NSScrollView.h>
#include <AppKit/NSSegmentedControl.h>
#include <AppKit/NSStepper.h>
#include <AppKit/NSTabView.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSTokenField.h>
#include <AppKit/NSViewController.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSClass.h>

namespace platform {

double numberOfSender(const std::shared_ptr<NSObject>& sender) {
    return tell(std::dynamic_pointer_cast<NSControl>(sender), &NSControl::doubleValue);
}

namespace {

const ClassRegistration registrations[] = {
    ClassRegistration(ClassTable<NSView>(u"NSView")),
    ClassRegistration(ClassTable<NSWindow>(u"NSWindow")),
    ClassRegistration(ClassTable<NSControl>(u"NSControl", u"NSView")),
    ClassRegistration(ClassTable<NSButton>(u"NSButton", u"NSControl")),
    ClassRegistration(ClassTable<NSTextField>(u"NSTextField", u"NSControl")),
    ClassRegistration(ClassTable<NSTokenField>(u"NSTokenField", u"NSTextField")
                          .action(u"cut:", &NSTokenField::cut)
                          .action(u"copy:", &NSTokenField::copy)
                          .action(u"paste:", &NSTokenField::paste)
                          .action(u"selectAll:", &NSTokenField::selectAll)
                          .action(u"undo:", &NSTokenField::undo)
                          .action(u"redo:", &NSTokenField::redo)),
    ClassRegistration(ClassTable<NSStepper>(u"NSStepper", u"NSControl")),
    ClassRegistration(ClassTable<NSMatrix>(u"NSMatrix", u"NSControl")),
    ClassRegistration(ClassTable<NSSegmentedControl>(u"NSSegmentedControl", u"NSControl")),
    ClassRegistration(ClassTable<NSColorWell>(u"NSColorWell", u"NSControl")),
    ClassRegistration(ClassTable<NSPopUpButton>(u"NSPopUpButton", u"NSControl")),
    ClassRegistration(ClassTable<NSPopUpButtonCell>(u"NSPopUpButtonCell")),
    ClassRegistration(ClassTable<NSTableView>(u"NSTableView", u"NSControl")),
    ClassRegistration(ClassTable<NSTabView>(u"NSTabView", u"NSView")),
    ClassRegistration(ClassTable<NSScrollView>(u"NSScrollView", u"NSView")),
    ClassRegistration(ClassTable<NSImageView>(u"NSImageView", u"NSControl")),
    ClassRegistration(NSViewController::describeClass()),
};

} // namespace

} // namespace platform
