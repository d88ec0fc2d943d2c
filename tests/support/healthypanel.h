#pragma once

#include "facts.h"

namespace Doctor {
/// What talmero-doctor gathers on a panel to which nothing is wrong.
Facts healthyFacts();

/// Answers to @p question: it ends with @p status and writes these texts.
void answer(Facts &facts, Question question, const QByteArray &output,
            const QByteArray &errors = {}, int status = 0);

/// The same of a tool that does not end by itself.
void fail(Facts &facts, Question question, ToolResult::End end);

/// Takes the tool away.
void removeTool(Facts &facts, Tool tool);

/// Puts the plain file @p path with @p content there.
void putFile(Facts &facts, const QString &path, const QByteArray &content);

/// One thing that is wrong, and all that the checks say of it.
struct BrokenThing
{
    const char *name;
    void (*breakIt)(Facts &facts);
    QStringList complaints; ///< "error subject: found", without the advice
};

/// Test rows with a column "index", one for each of @p things.
void addBrokenThings(const QList<BrokenThing> &things);

/// Whether the checks say of @p thing what they should, and nothing else; every complaint must
/// have an advice. Result: what they say instead; empty if that is right.
QString judgeBrokenThing(const BrokenThing &thing);

/// What the checks complain of, "error subject: found".
QStringList complaints(const Facts &facts);
} // namespace Doctor
