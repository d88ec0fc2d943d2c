#pragma once

#include "facts.h"
#include "finding.h"

namespace Doctor {
/// Why the answer to @p question cannot be used: the tool is missing, hangs, crashes, never stops
/// writing or fails. @p loss says what the panel cannot do then. Result: nothing if the tool
/// succeeded.
std::optional<Finding> badAnswer(const Facts &facts, Question question, const QString &loss);

/// The same for a tool that needs the display.
std::optional<Finding> badDisplayAnswer(const Facts &facts, Question question, const QString &loss);

/// Whether any tool got an answer from the display.
bool displayAnswers(const Facts &facts);

/// The answer as the program reads it.
QString answerText(const Facts &facts, Question question);

/// Size of the screen in px, from the output of "xrandr -q".
std::optional<QSize> screenSize(const Facts &facts);

/// @p text on one line, cut to 60 characters for the report.
QString shortened(const QString &text);
} // namespace Doctor
