// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Outcome.h>
#include <store/Store.h>

#include <QString>

namespace app {

/// What is wrong with a document, in the user's language. In English it is the engine's own sentence, which tells more;
/// elsewhere it goes by the kind of the failure. `triedPassword`: one was given, and did not fit.
QString sentenceOf(const engine::Outcome& outcome, bool triedPassword = false);

/// What is wrong with a file of configurations, in the user's language, likewise.
QString sentenceOf(const store::Failure& failure);

/// For below it: what else there is to say, such as the reason, and what became of the file; a line each. Empty in
/// English, where the sentence has it all.
QString detailOf(const store::Failure& failure);

/// What a person should hear about a document that was stamped, or of changes that were joined, in the user's language.
QString sentenceOf(const engine::Warning& warning);
QString sentenceOf(const store::Notice& notice);

} // namespace app
