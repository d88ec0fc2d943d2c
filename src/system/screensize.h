#pragma once

#include <QSize>
#include <QString>

#include <optional>

/// Size in pixels from a text such as "800x600" or "800X600": two decimal numbers, each at
/// least 1. Nothing for any other text.
std::optional<QSize> parseScreenSize(const QString &text);
