// SPDX-License-Identifier: MIT
#pragma once

#include "PlaceholderTokenField.h"
#include "SampleDocument.h"

#include <engine/PreviewStamper.h>
#include <files/PrivateFolder.h>
#include <model/History.h>
#include <model/HostClasses.h>
#include <store/Store.h>

#include <QString>

namespace app {

/// The model of one run of the program, tied to its store and to the preview.
class Session {
public:
    explicit Session(const std::filesystem::path& store);
    /// A pane with something left to do may keep the model, which then neither stamps nor stores.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    model::ImprinterModel& model() { return *m_model; }
    const std::filesystem::path& file() const { return m_store.file(); }
    const std::vector<store::Failure>& messages() const { return m_loaded.messages; }

    /// Told about a save that failed; the pane's own messages carry no errors.
    void setOnSaveFailure(std::function<void(const store::Failure&)> tell) { m_onSaveFailure = std::move(tell); }
    /// Whom to ask about a configuration that was changed here and by another program; nobody at first, so that such a
    /// save fails.
    void setOnConflict(store::Ask ask) { m_ask = std::move(ask); }
    /// Told where a save has to wait for another program.
    void setOnWait(std::function<void()> tell) { m_store.setOnWait(std::move(tell)); }
    /// Told what was decided without a question when changes were joined, by a save or by `takeOver`.
    void setOnNotices(std::function<void(const std::vector<store::Notice>&)> tell) { m_onNotices = std::move(tell); }
    /// Told when a save has brought changes of another program into the model.
    void setOnMerge(std::function<void()> tell) { m_onMerge = std::move(tell); }
    /// Whether something was changed since it was last stored, and could not be stored.
    bool hasUnsaved() const { return m_saveFailed && m_changed; }
    /// Whether a save is at work, which may be asking its user.
    bool isSaving() const { return m_saving; }
    /// Whether what is unsaved is in the journal as it is now.
    bool isJournalled();

    /// What was done to the model, so that it can be undone. A save that brought changes of another program forgets it.
    model::History& history() { return m_history; }
    /// The changes that follow now come from a text that undoes its own typing.
    void textUndoes();

    /// Told after every change of the model: as its own notice says.
    void setOnModelChange(model::Configuration::ChangeNotice told) { m_onModelChange = std::move(told); }
    /// Stores the model if it was changed since it was stored last. Panes save too, but not without a configuration
    /// being edited.
    void saveChanges();

    /// From now on what is not saved yet is in a journal too, half a second after a change, later where there is much
    /// to compare; a save that works drops it.
    void keepJournal();
    /// What programs left that ended without saving.
    std::vector<store::Unsaved> unsaved() { return m_store.findUnsaved(); }
    /// Takes it into the model, which is stored by the next save only.
    std::optional<store::Failure> takeOver(const store::Unsaved& unsaved);
    void discard(const store::Unsaved& unsaved) { m_store.discard(unsaved); }

    /// The user's own document in place of the supplied sample page; null where there is no folder for its pictures.
    SampleDocument* sample();
    /// Told of a document that can be the sample no more, and why.
    void setOnSampleLost(std::function<void(const QString& file, const QString& reason)> tell) {
        m_onSampleLost = std::move(tell);
    }
    /// Whether the page shown last bears a stamp.
    bool isSampleStamped() const { return m_sampleStamped; }
    /// The page shown last, as a PNG file in a folder of this program; none where nothing was shown.
    std::optional<std::filesystem::path> previewAsPng();

    /// Before this the sample page is not touched and previews are answered with none: the window is painted first.
    void allowPreviews();

private:
    std::optional<host::NSURL> stampSample(const std::filesystem::path& sample,
                                           const std::shared_ptr<host::ImprinterConfiguration>& configuration);
    void makePreviewFolder();
    /// What is stamped: a page of the user's own document, or `supplied`.
    std::filesystem::path chosenSample(const std::filesystem::path& supplied);
    /// The supplied page takes the place of the user's document, which is said.
    void giveUpSample(const QString& reason);
    void stampAgainSoon();
    void save();
    void tellNotices();
    void endStepSoon();
    void writeJournalSoon();
    void writeJournal();

    store::Store m_store;
    store::LoadResult m_loaded;
    std::shared_ptr<model::ImprinterModel> m_model;
    model::HostClasses m_classes;
    model::History m_history;
    platform::ClassRegistration m_tokenField{PlaceholderTokenField::describeClass()};
    std::optional<files::PrivateFolder> m_previewFolder;
    std::optional<engine::PreviewStamper> m_previewStamper;
    std::optional<SampleDocument> m_sample;
    std::function<void(const QString& file, const QString& reason)> m_onSampleLost;
    bool m_sampleStamped = true;
    /// What the file that was handed out last shows.
    struct Shown {
        std::filesystem::path sample;
        std::filesystem::path result;
        std::weak_ptr<host::ImprinterConfiguration> configuration;
    };
    Shown m_shown;
    std::shared_ptr<bool> m_stampingSoon; // what is still to be done outlives nobody who would do it
    std::shared_ptr<bool> m_writingSoon;
    std::shared_ptr<bool> m_endingSoon;
    std::function<void(const store::Failure&)> m_onSaveFailure;
    store::Ask m_ask;
    std::function<void()> m_onMerge;
    std::function<void(const std::vector<store::Notice>&)> m_onNotices;
    model::Configuration::ChangeNotice m_onModelChange;
    bool m_previews = false;
    bool m_saidThatThereIsNoFolder = false;
    double m_journalDelay = 0.5; // seconds
    bool m_saidThatThereIsNoJournal = false;
    bool m_keepsJournal = false;
    bool m_saving = false;
    bool m_mergedIn = false;
    bool m_saveFailed = false;
    bool m_changed = false;
};

} // namespace app
