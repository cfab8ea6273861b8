// SPDX-License-Identifier: MIT
#include "Session.h"

#include <Foundation/NSException.h>
#include <Foundation/NSUserDefaults.h>

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

    // Nothing is stamped in place unless somebody chose it.
    auto& defaults = platform::NSUserDefaults::standardUserDefaults();
    if (!defaults.stringForKey(u"ImprinterDuplicateRecord"))
        defaults.setBoolForKey(true, u"ImprinterDuplicateRecord");
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
    if (!m_previewStamper) {
        m_previewFolder.emplace();
        m_previewStamper.emplace(m_previewFolder->path());
    }
    const auto outcome = m_previewStamper->stamp(sample, configuration);
    if (outcome)
        return host::NSURL::fileURLWithPath(outcome.path);
    platform::NSLog(outcome.path.string() + ": " + outcome.sentence);
    return std::nullopt;
}

} // namespace app
