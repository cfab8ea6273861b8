// SPDX-License-Identifier: MIT
#include "Session.h"

#include "HostBundle.h"

#include <Foundation/NSException.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/dispatch.h>

namespace app {

Session::Session(const std::filesystem::path& store)
    : m_store(store), m_loaded(m_store.load()), m_model(std::make_shared<model::ImprinterModel>()), m_classes(m_model) {
    m_model->setConfigurations(m_loaded.configurations);
    m_model->setSaver([this](const model::ImprinterModel& saved) {
        const auto failure = m_store.save(saved);
        m_saveFailed = failure.has_value();
        m_changed = m_changed && m_saveFailed;
        if (failure && hasUnsaved() && m_onSaveFailure)
            m_onSaveFailure(*failure);
    });
    m_model->setOnChange([this](const auto& configuration) {
        m_changed = true;
        // A pane that edits the members of a combined configuration asks for no new preview.
        if (configuration && configuration->combinedConfiguration() && m_shown.configuration.lock() == configuration)
            stampAgainSoon();
        if (m_onModelChange)
            m_onModelChange(configuration);
    });
    m_model->setStamper([this](const std::optional<host::NSURL>& sample,
                               const std::shared_ptr<host::ImprinterConfiguration>& configuration,
                               host::NSInteger) -> std::optional<host::NSURL> {
        if (!m_previews || !sample || !configuration)
            return std::nullopt;
        return stampSample(sample->path(), configuration);
    });

    model::fontRunNames() = {text(u"Font %@").toStdU16String(), text(u"%@ (missing)").toStdU16String()};

    // Nothing is stamped in place unless somebody chose it.
    auto& defaults = platform::NSUserDefaults::standardUserDefaults();
    if (!defaults.stringForKey(u"ImprinterDuplicateRecord"))
        defaults.setBoolForKey(true, u"ImprinterDuplicateRecord");
}

Session::~Session() {
    m_model->setSaver({});
    m_model->setStamper({});
    m_model->setOnChange({});
}

void Session::saveChanges() {
    if (m_changed)
        m_model->saveConfigurations();
}

void Session::allowPreviews() {
    PrivateFolder::removeLeftovers();
    m_previews = true;
}

std::optional<host::NSURL> Session::stampSample(const std::filesystem::path& sample,
                                                const std::shared_ptr<host::ImprinterConfiguration>& configuration) {
    try {
        if (!m_previewStamper) {
            m_previewFolder.emplace();
            m_previewStamper.emplace(m_previewFolder->path());
        }
        m_shown = {sample, configuration};
        const auto outcome = m_previewStamper->stamp(sample, configuration);
        if (outcome)
            return host::NSURL::fileURLWithPath(outcome.path);
        platform::NSLog(outcome.path.string() + ": " + outcome.sentence);
    } catch (const std::exception& error) {
        // The pane knows no errors here: without a folder there is no preview, and everything else goes on.
        if (!std::exchange(m_saidThatThereIsNoFolder, true))
            platform::NSLog(std::string("There is no preview: ") + error.what());
    }
    return std::nullopt;
}

void Session::stampAgainSoon() {
    if (m_stampingSoon)
        return;
    m_stampingSoon = std::make_shared<bool>(true);
    platform::dispatchAsync([this, waiting = std::weak_ptr(m_stampingSoon)] {
        if (waiting.expired())
            return;
        m_stampingSoon.reset();
        const auto configuration = m_shown.configuration.lock();
        if (!configuration || !m_previewStamper)
            return;
        const auto outcome = m_previewStamper->stampAgain(m_shown.sample, configuration);
        if (!outcome)
            platform::NSLog(outcome.path.string() + ": " + outcome.sentence);
    });
}

} // namespace app
