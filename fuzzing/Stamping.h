// SPDX-License-Identifier: MIT
#pragma once

#include "ScratchFile.h"

#include <engine/Stamper.h>
#include <model/Configuration.h>

/// Stamps and unstamps whatever file it is given, as the command line does.
class FuzzedStamping {
public:
    FuzzedStamping() {
        const auto made = model::Configuration::makeWithID(u"fuzzed", false);
        auto title = std::make_shared<std::vector<host::TitleToken>>(*made->titleTokens());
        title->emplace_back(std::u16string(u"R\u00E9ceived "));
        title->emplace_back(std::u16string(u"%pageNumber%"));
        made->setTitleTokens(title);
        made->setBorderEnabled(true);
        made->setRotation(30);
        m_job.configurations = {made};
        m_job.threads = 1;
    }

    void run(const std::uint8_t* data, std::size_t size) {
        m_job.input = m_folder.write("input", data, size);
        m_job.output = m_folder.path() / "stamped";
        for (const auto saving : {engine::Saving::automatic, engine::Saving::rewrite}) {
            m_job.saving = saving;
            m_job.allowSigned = saving == engine::Saving::automatic;
            m_job.input = m_folder.path() / "input";
            m_job.output = m_folder.path() / "stamped";
            if (!check(engine::stampFile(m_job), 1))
                return;
            m_job.input = m_folder.path() / "stamped";
            m_job.output = m_folder.path() / "again";
            m_job.replace = true;
            const auto again = engine::stampFile(m_job);
            m_job.replace = false;
            check(again, 2);
            m_job.output = m_folder.path() / "bare";
            check(engine::unstampFile(m_job), 2 + (again ? 1 : 0));
            for (const auto* name : {"stamped", "again", "bare"})
                std::filesystem::remove(m_folder.path() / name);
        }
    }

private:
    /// Answers whether the file was stamped.
    bool check(const engine::Outcome& outcome, std::size_t filesBefore) {
        require(outcome || !outcome.sentence.empty(), "a failure has a reason");
        require(m_folder.fileCount() == filesBefore + (outcome ? 1 : 0),
                "there is an output exactly where nothing failed, and nothing else");
        return static_cast<bool>(outcome);
    }

    ScratchFolder m_folder{"stamping"};
    engine::StampJob m_job;
};
