#pragma once

#include "OrvanePlatform/ocr/layout/LinePicture.h"

#include <QString>
#include <QStringList>

namespace orvane::ocr {

/// The name of Tesseract's data file for a language (BCP 47), without its suffix: "eng" for "en-US".
/// Throws PlatformError for a language that has none.
QString dataNameOf(const QString& language);

/// How large a line is shown to the engine of a language (BCP 47).
LineShape lineShapeFor(const QString& language);

/// The languages whose data files are among the given ones.
QStringList languagesWithData(const QStringList& dataNames);

} // namespace orvane::ocr
