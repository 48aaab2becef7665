#pragma once
#include "preview/ToolPath.h"

#include <QImage>

// The path seen isometrically, with axes, the envelope and its lengths. strTitle and strNote are drawn above and below.
// Needs a QGuiApplication for its font; any platform will do.
QImage DrawToolPath(const CToolPath& path, const QString& strTitle, const QString& strNote);
