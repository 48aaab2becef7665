#pragma once
#include "run/JobKind.h"

// A G-code program: in the program store, like in the window.
class CGCodeJob : public CJobKind
{
public:
    bool Load(const stJobFile& file, QString& strWhy) override;
    std::vector<stJobError> Errors() const override;
    QString Size() const override;
    qint64 Lines() const override;
    bool HasGCode() const override { return false; }   // it is one
    bool WriteGCode(const QString&) override { return false; }
    void Start(AppControl& app, const stRunOptions& options) override;
};
