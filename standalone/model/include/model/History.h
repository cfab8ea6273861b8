// SPDX-License-Identifier: MIT
#pragma once

#include <model/ImprinterModel.h>

#include <chrono>
#include <deque>
#include <set>

namespace model {

/// What a user did to a model, step by step, so that it can be undone and done again.
///
/// Objects stay: undoing puts values back into the configurations that had them, and a deleted configuration back into
/// the list, the combined ones that it was in included. What changes until `endStep` is called is one step. Steps that
/// follow each other within a second and change the same values of the same configuration become one, as typing does.
/// The oldest steps are forgotten once there are more than a hundred, or they take more than 32 MB.
///
/// The owner passes the notices of the model on. To be used on the main thread only, like the model.
class History {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t mostBytes = std::size_t{32} << 20;

    /// Of a model that lives longer. The last step is kept however much it takes.
    explicit History(ImprinterModel& model, std::size_t mostBytes = History::mostBytes);

    /// To be told before and after every change, as the model's own notices are.
    void willChange(const std::shared_ptr<Configuration>& configuration);
    void changed(const std::shared_ptr<Configuration>& configuration);

    /// What was changed since the last call becomes a step; nothing where it is as it was. A new step leaves nothing to
    /// do again.
    void endStep(Clock::time_point now = Clock::now());
    /// The changes of the current step come from a text that undid its own typing: what leads back to an earlier state
    /// takes the steps since then away instead of adding another one.
    void textUndoes() { m_textUndoes = true; }
    /// Forgets everything: what happened before is not to be touched.
    void clear();

    bool canUndo() const { return !m_done.empty() || isChanging(); }
    bool canRedo() const { return !m_undone.empty() && !isChanging(); }

    /// Undoes the last step, or does the last one undone again. Answers the row to show then: that of the first
    /// configuration that changed or came back, or the place of the one that went; none where that does not matter.
    std::optional<host::NSUInteger> undo();
    std::optional<host::NSUInteger> redo();

private:
    struct Former {
        std::shared_ptr<Configuration> configuration;
        std::shared_ptr<const Configuration> was;
    };
    struct Step {
        std::vector<Former> formers;
        host::ConfigurationArray list; ///< The former list; null where it was the same.
        unsigned fields = 0;           ///< That differ, of all configurations together.
        Clock::time_point time;

        std::size_t weight() const;
    };

    bool isChanging() const { return !m_current.formers.empty() || m_listChanged; }
    /// Whether both change nothing but the same values of the same configuration.
    static bool areOfOneKind(const Step& step, const Step& other);
    /// Whether the configuration of such a step is now what it was before it.
    static bool isAsBefore(const Step& step);
    /// Takes the steps away that `step` leads back before. NO where there are none.
    bool takeBack(const Step& step);
    Step takeCurrent();
    void push(Step step);
    /// Makes the model what it was before `step`; answers the step back.
    Step apply(const Step& step, std::optional<host::NSUInteger>& row);

    ImprinterModel& m_model;
    std::size_t m_mostBytes;
    host::ConfigurationArray m_list; // of the last step
    std::deque<Step> m_done;
    std::vector<Step> m_undone;
    Step m_current;
    std::set<std::shared_ptr<Configuration>> m_changing; // those of the current step
    bool m_listChanged = false;
    bool m_textUndoes = false;
    bool m_applying = false;
};

} // namespace model
