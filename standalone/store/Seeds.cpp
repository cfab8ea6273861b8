// SPDX-License-Identifier: MIT
#include <store/Store.h>

namespace store {

namespace {

using host::NSColor;
using model::Configuration;

// The identifiers are fixed, so that they stay the same from launch to launch before anything was saved.
std::shared_ptr<Configuration> make(std::u16string identifier, const std::u16string& name, host::Anchor anchor,
                                    host::Occurrence occurrence) {
    auto made = Configuration::makeWithID(std::move(identifier), false);
    made->setName(name);
    made->setPosition(static_cast<host::NSInteger>(anchor));
    made->setOccurance(static_cast<host::NSInteger>(occurrence));
    return made;
}

/// Puts `texts` behind the font run that the configuration was made with, and answers that run.
std::shared_ptr<host::ImprinterFont> setTitle(Configuration& configuration, const std::vector<std::u16string>& texts) {
    auto title = *configuration.titleTokens();
    title.insert(title.end(), texts.begin(), texts.end());
    auto run = std::get<std::shared_ptr<host::ImprinterFont>>(title.front());
    configuration.setTitleTokens(std::make_shared<const std::vector<host::TitleToken>>(std::move(title)));
    return run;
}

std::shared_ptr<Configuration> received() {
    const auto red = NSColor::colorWithSRGB(0.8, 0.1, 0.1, 1);
    auto made = make(u"5B2E4F0A-7C1D-4E8B-9A36-0D5C1E7F2A01", u"Received", host::Anchor::topRight,
                     host::Occurrence::firstPageOnly);
    const auto run = setTitle(*made, {u"RECEIVED ", u"%date%"});
    run->setFullFontName(u"DejaVuSans-Bold");
    run->setFontSize(14);
    run->setColour(red);
    made->setBorderEnabled(true);
    made->setBorderThickness(1.5);
    made->setBorderColour(red);
    return made;
}

std::shared_ptr<Configuration> pageOfPages() {
    auto made = make(u"5B2E4F0A-7C1D-4E8B-9A36-0D5C1E7F2A02", u"Page of Pages", host::Anchor::bottomCenter,
                     host::Occurrence::everyPage);
    const auto run = setTitle(*made, {u"Page ", u"%pageNumber%", u" of ", u"%recordPageCount%"});
    run->setFullFontName(u"DejaVuSans");
    run->setFontSize(10);
    run->setColour(NSColor::blackColor());
    return made;
}

std::shared_ptr<Configuration> confidential() {
    auto made = make(u"5B2E4F0A-7C1D-4E8B-9A36-0D5C1E7F2A03", u"Confidential", host::Anchor::center,
                     host::Occurrence::everyPage);
    const auto run = setTitle(*made, {u"CONFIDENTIAL"});
    run->setFullFontName(u"DejaVuSans-Bold");
    run->setFontSize(64);
    run->setColour(NSColor::colorWithSRGB(0.5, 0.5, 0.5, 0.4));
    run->setOutline(true);
    run->setStrokeWidth(2);
    made->setRotation(45);
    return made;
}

} // namespace

std::vector<std::shared_ptr<Configuration>> suppliedConfigurations() {
    return {received(), pageOfPages(), confidential()};
}

} // namespace store
