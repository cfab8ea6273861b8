// SPDX-License-Identifier: MIT
#include "Session.h"

#include "HostBundle.h"
#include "Sentences.h"

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/dispatch.h>

#include <QImage>
#include <QScopeGuard>

#include <algorithm>
#include <chrono>

namespace app {

namespace {

std::u16string nameOfSupplied(const std::u16string& english) {
    const QString names[][2] = {{QStringLiteral("Received"), text(u"Received")},
                                {QStringLiteral("Page of Pages"), text(u"Page of Pages")},
                                {QStringLiteral("Confidential"), text(u"Confidential")}};
    for (const auto& [name, local] : names)
        if (toQt(english) == name)
            return local.toStdU16String();
    return english;
}

} // namespace

Session::Session(const std::filesystem::path& store)
    : m_store(store), m_loaded(m_store.load()), m_model(std::make_shared<model::ImprinterModel>()), m_classes(m_model),
      m_history(*m_model) {
    m_model->setConfigurations(m_loaded.configurations);
    // The program's own configurations are called as the user's language has it, until there is a file.
    std::error_code none;
    if (!m_loaded.standIns && !std::filesystem::exists(store, none))
        for (const auto& supplied : m_loaded.configurations)
            supplied->setName(nameOfSupplied(supplied->name()));
    m_history.clear();
    m_model->setBeforeChange([this](const auto& configuration) {
        if (!m_saving)
            m_history.willChange(configuration);
    });
    m_model->setSaver([this](model::ImprinterModel&) { save(); });
    m_model->setOnChange([this](const auto& configuration) {
        if (m_saving) {
            m_mergedIn = true;
        } else {
            m_changed = true;
            m_history.changed(configuration);
            endStepSoon();
            writeJournalSoon();
        }
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
    if (m_keepsJournal && m_changed)
        writeJournal();
    m_model->setSaver({});
    m_model->setStamper({});
    m_model->setOnChange({});
    m_model->setBeforeChange({});
}

void Session::saveChanges() {
    if (m_changed)
        m_model->saveConfigurations();
}

void Session::save() {
    // While a save asks, nothing that happens meanwhile begins another.
    if (m_saving)
        return;
    m_mergedIn = false;
    const auto failure = [this] {
        m_saving = true;
        const QScopeGuard saved([this] { m_saving = false; });
        return m_store.save(*m_model, m_ask);
    }();
    m_saveFailed = failure.has_value();
    m_changed = m_changed && m_saveFailed;
    if (m_mergedIn) {
        m_history.clear(); // what it would put back is not what was there
        if (m_onMerge)
            m_onMerge();
    }
    tellNotices();
    if (!hasUnsaved())
        return;
    // Whatever is decided now, the changes outlive the program.
    if (m_keepsJournal)
        writeJournal();
    if (m_onSaveFailure)
        m_onSaveFailure(*failure);
}

void Session::tellNotices() {
    const auto notices = m_store.notices(); // while they are told, another save may take place
    if (!notices.empty() && m_onNotices)
        m_onNotices(notices);
}

void Session::textUndoes() {
    m_history.textUndoes();
    endStepSoon();
}

void Session::endStepSoon() {
    if (m_endingSoon)
        return;
    m_endingSoon = std::make_shared<bool>(true);
    platform::dispatchAsync([this, waiting = std::weak_ptr(m_endingSoon)] {
        if (waiting.expired())
            return;
        m_endingSoon.reset();
        m_history.endStep();
    });
}

void Session::keepJournal() {
    m_keepsJournal = true;
    if (m_changed)
        writeJournalSoon();
}

void Session::writeJournalSoon() {
    if (m_writingSoon || !m_keepsJournal)
        return;
    m_writingSoon = std::make_shared<bool>(true);
    platform::dispatchAfter(m_journalDelay, [this, waiting = std::weak_ptr(m_writingSoon)] {
        if (waiting.expired())
            return;
        m_writingSoon.reset();
        if (m_changed)
            writeJournal();
    });
}

void Session::writeJournal() {
    const auto start = std::chrono::steady_clock::now();
    const auto failure = m_store.keepUnsaved(*m_model);
    // Whoever has thousands of configurations shall not notice: a twentieth of the time at most.
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    m_journalDelay = std::clamp(20 * taken.count(), 0.5, 5.0);
    if (failure && !std::exchange(m_saidThatThereIsNoJournal, true))
        platform::NSLog("There is no journal of what is not saved: " + platform::toUtf8(failure->sentence));
}

bool Session::isJournalled() {
    return m_keepsJournal && !m_loaded.readOnly && !m_store.keepUnsaved(*m_model);
}

std::optional<store::Failure> Session::takeOver(const store::Unsaved& unsaved) {
    auto failure = m_store.takeOver(unsaved, *m_model, m_ask);
    tellNotices();
    return failure;
}

void Session::allowPreviews() {
    files::PrivateFolder::removeLeftovers();
    m_previews = true;
}

void Session::makePreviewFolder() {
    if (m_previewStamper)
        return;
    m_previewFolder.emplace();
    m_previewStamper.emplace(m_previewFolder->path());
}

SampleDocument* Session::sample() {
    try {
        makePreviewFolder();
    } catch (const std::exception&) {
        return nullptr;
    }
    if (!m_sample) {
        m_sample.emplace(m_previewFolder->path());
        const auto file = platform::NSUserDefaults::standardUserDefaults().stringForKey(SampleDocument::fileKey);
        if (const auto problem = m_sample->recall(); problem && m_onSampleLost)
            m_onSampleLost(toQt(file.value_or(u"")), *problem);
    }
    return &*m_sample;
}

std::filesystem::path Session::chosenSample(const std::filesystem::path& supplied) {
    auto* own = sample();
    if (own && own->isChosen()) {
        if (auto picture = own->picture()) {
            m_previewStamper->setPage(
                {own->page(), own->pageCount(), platform::fromUtf8(own->file().stem().string()), true});
            return *picture;
        }
        std::error_code none;
        giveUpSample(std::filesystem::exists(own->file(), none) ? text(u"The file cannot be read.")
                                                                : text(u"The file does not exist."));
    }
    m_previewStamper->setPage({});
    return supplied;
}

void Session::giveUpSample(const QString& reason) {
    const auto file = shown(m_sample->file());
    m_sample->chooseSupplied();
    m_previewStamper->setPage({});
    if (m_onSampleLost)
        m_onSampleLost(file, reason);
}

std::optional<std::filesystem::path> Session::previewAsPng() {
    const auto configuration = m_shown.configuration.lock();
    if (!configuration || m_shown.result.empty())
        return std::nullopt;
    auto name = toQt(configuration->name());
    for (auto& character : name)
        if (character < u' ' || character == u'/')
            character = u'-';
    constexpr int longest = 60; // whose UTF-8 every file system takes
    name = name.left(longest).trimmed();
    if (name.isEmpty() || name.startsWith(u'.'))
        name.prepend(u'_');
    const auto file = m_previewFolder->path() / (name + QStringLiteral(".png")).toStdString();
    const QImage picture(QString::fromStdString(m_shown.result.string()));
    return picture.save(QString::fromStdString(file.string()), "png") ? std::optional(file) : std::nullopt;
}

std::optional<host::NSURL> Session::stampSample(const std::filesystem::path& sample,
                                                const std::shared_ptr<host::ImprinterConfiguration>& configuration) {
    try {
        makePreviewFolder();
        auto page = chosenSample(sample);
        auto outcome = m_previewStamper->stamp(page, configuration);
        if (!outcome && page != sample &&
            (outcome.code == engine::Code::damaged || outcome.code == engine::Code::unsupported ||
             outcome.code == engine::Code::tooLarge)) {
            giveUpSample(sentenceOf(outcome));
            page = sample;
            outcome = m_previewStamper->stamp(page, configuration);
        }
        m_shown = {page, {}, configuration};
        m_sampleStamped = outcome.pagesStamped > 0;
        m_shown.result = outcome ? outcome.path : std::filesystem::path();
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
