#pragma once
#include "dxf/DxfToGCode.h"
#include "run/GCodeJob.h"

// A drawing: converted, and run as the program that it becomes.
class CDxfJob : public CGCodeJob
{
public:
    std::vector<stJobField> Fields() override;
    bool Load(const stJobFile& file, QString& strWhy) override;
    QString LineForm() const override { return QStringLiteral(": program line %1:"); }   // not of the drawing
    bool HasGCode() const override { return true; }
    bool WriteGCode(const QString& strFile) override;

private:
    stDXF2GCode m_Settings;
    QString m_strProgram;
};
