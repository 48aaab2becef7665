#pragma once
#include "run/JobKind.h"

// A work area of shapes, cut as it stands. The depth of a pass is not in its file.
class CWorkAreaJob : public CJobKind
{
public:
    std::vector<stJobField> Fields() override;
    bool Load(const stJobFile& file, QString& strWhy) override;
    std::vector<stJobError> Errors() const override;
    QString Size() const override;
    bool WriteGCode(const QString& strFile) override;
    void Start(AppControl& app, const stRunOptions& options) override;

private:
    stShapeCuttingInfo m_Info;
};
