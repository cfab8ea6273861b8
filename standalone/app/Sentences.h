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

/// The store's own sentence, for below the other one: it tells the reason and what became of the file. Empty where it
/// is the same.
QString detailOf(const store::Failure& failure);

} // namespace app
