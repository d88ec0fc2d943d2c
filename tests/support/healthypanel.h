#pragma once

#include "facts.h"

namespace Doctor {
/// What talmero-doctor gathers on a healthy panel.
Facts healthyFacts();

/// Sets the answer to @p question: the exit status and the output of the tool.
void answer(Facts &facts, Question question, const QByteArray &output,
            const QByteArray &errors = {}, int status = 0);

/// Sets the answer of a tool that did not end by itself.
void fail(Facts &facts, Question question, ToolResult::End end);

/// Removes the tool.
void removeTool(Facts &facts, Tool tool);

/// Adds the plain file @p path with @p content.
void putFile(Facts &facts, const QString &path, const QByteArray &content);

/// A fault and all complaints of the checks about it.
struct BrokenThing
{
    const char *name;
    void (*breakIt)(Facts &facts);
    QStringList complaints; ///< "error subject: found", without the advice
};

/// Test rows with a column "index", one for each of @p things.
void addBrokenThings(const QList<BrokenThing> &things);

/// Compares the complaints of the checks about @p thing with those expected. Each must have an
/// advice. Result: empty if all is right, otherwise what the checks say.
QString judgeBrokenThing(const BrokenThing &thing);

/// The complaints of the checks, as "error subject: found".
QStringList complaints(const Facts &facts);
} // namespace Doctor
