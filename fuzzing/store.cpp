// SPDX-License-Identifier: MIT
// A file of configurations, the program's own or one to be imported: it is refused with a reason, or what is read of it
// is written and read again as the same.

#include "Require.h"

#include <Format.h>

#include <Foundation/NSString.h>
#include <model/ImprinterModel.h>

namespace {

/// None where the file is refused.
std::optional<QByteArray> rewritten(const QByteArray& bytes) {
    store::UnknownKeys unknown;
    model::ImprinterModel model;
    try {
        model.setConfigurations(store::read(bytes, unknown));
    } catch (const store::Problem& problem) {
        require(!problem.text.isEmpty(), "a refusal has a reason");
        return std::nullopt;
    }
    try {
        return store::bytesOf(store::formsOf(model, unknown), qsizetype{1} << 26);
    } catch (const store::Problem& problem) {
        require(problem.code == store::Code::tooLarge || problem.code == store::Code::unstorable,
                "what was read can be written, unless it is too much");
        return std::nullopt;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    store::looksLikeConfigurations(bytes);
    store::readNewer(bytes);
    if (const auto once = rewritten(bytes)) {
        const auto twice = rewritten(*once);
        require(twice == once, "a file that was written is read as what it was written from");
    }
    return 0;
}
