#pragma once

#include "facts.h"
#include "finding.h"

namespace Doctor {
/// What keeps the answer to @p question from being looked at: the tool is missing, hangs, crashes,
/// writes without end or fails. Nothing if it ended well. @p loss is what the panel cannot do then.
std::optional<Finding> badAnswer(const Facts &facts, Question question, const QString &loss);

/// As badAnswer(), for a tool that needs the display.
std::optional<Finding> badDisplayAnswer(const Facts &facts, Question question, const QString &loss);

/// Whether any tool got an answer from the display.
bool displayAnswers(const Facts &facts);

/// What was answered, as the program reads it.
QString answerText(const Facts &facts, Question question);

/// Size of the screen in px, as "xrandr -q" tells it.
std::optional<QSize> screenSize(const Facts &facts);

/// Whether @p text is an IPv4 address.
bool isAddress(const QString &text);

/// @p text in one line and not longer than a line of the report bears.
QString shortened(const QString &text);
} // namespace Doctor
