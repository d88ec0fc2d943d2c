#pragma once

#include "facts.h"

/// A question, and the command that asks it.
struct AskedTool
{
    Question question;
    QString tool; ///< its path; if it is empty nothing is asked
    Command command;
    QString folder = {}; ///< in which it runs
};

/// The questions that need nothing but the paths of the tools in @p facts. @p archive is the
/// sample archive in the folder @p folder; both are empty if it could not be made.
QList<AskedTool> firstQuestions(const Facts &facts, const QString &archive, const QString &folder);

/// The question of the state of the touch controller that the answers in @p facts name.
AskedTool stateQuestion(const Facts &facts);
