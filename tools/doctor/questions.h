#pragma once

#include "facts.h"

namespace Doctor {
/// A question, the tool that is asked, and the command.
struct AskedTool
{
    Question question;
    QString tool; ///< path; empty if it is missing, and then nothing is asked
    Command command;
    QString folder = {}; ///< where it runs
};

/// The questions that need only the paths in @p facts. @p archive is the sample archive in the
/// folder
/// @p folder; if it is empty, tar is not asked to unpack.
QList<AskedTool> firstQuestions(const Facts &facts, const QString &archive, const QString &folder);

/// The question for the state of the touch controller, whose name is among the answers in @p facts.
AskedTool stateQuestion(const Facts &facts);
} // namespace Doctor
