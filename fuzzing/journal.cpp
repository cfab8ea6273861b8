// SPDX-License-Identifier: MIT
// What a program left that ended without saving: it is refused, or taken over with a reason for what cannot be; and
// whatever comes of it, the file of configurations stays one, and what the model says can be saved.

#include "ScratchFile.h"

#include <model/ImprinterModel.h>
#include <store/Store.h>

namespace {

constexpr char stored[] = R"({"format": "imprinter-configurations", "version": 1, "configurations": [
    {"uniqueID": "a", "name": "A", "rotation": 12.3},
    {"uniqueID": "b", "name": "B", "titleTokens": ["text", {"fontSize": 9}], "unknown": 1},
    {"uniqueID": "all", "name": "All", "combinedConfiguration": true, "members": ["a", "b", "a"]}]})";

std::size_t entries(const model::ImprinterModel& model) {
    return model.configurations()->size();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFolder folder("journal");
    const auto file =
        folder.write("configurations.json", reinterpret_cast<const std::uint8_t*>(stored), sizeof stored - 1);
    const auto journal = folder.write(".configurations.json.unsaved-aaaaaa", data, size);
    for (const auto choice : {store::Choice::mine, store::Choice::theirs, store::Choice::both}) {
        store::Store store(file);
        store.keepNoVersions();
        model::ImprinterModel model;
        model.setConfigurations(store.load().configurations);
        const bool isSeen = store.hasUnsaved();
        const auto found = store.findUnsaved();
        require(found.size() == (isSeen ? 1U : 0U), "who looks sees what is offered");
        if (found.empty())
            break;
        const auto before = entries(model);
        const auto failure = store.takeOver(found[0], model, [&](const auto&) { return std::optional(choice); });
        require(!failure || !failure->sentence.empty(), "a failure has a reason");
        require(!failure || entries(model) == before, "what cannot be taken over changes nothing");
        require(!store.save(model), "what was taken over can be saved");
        const auto saved = store::Store(file).read();
        require(saved.messages.empty(), "what was saved can be read");
        require(saved.configurations.size() == entries(model), "and is what the model says");
        if (failure)
            break; // the next one would get no further
        // What is still in the journal is for the next choice, on top of what was saved.
        folder.write(".configurations.json.unsaved-aaaaaa", data, size);
    }
    std::error_code none;
    std::filesystem::remove(journal, none);
    require(folder.fileCount() == 1, "nothing else stays behind");
    return 0;
}
