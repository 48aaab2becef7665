#pragma once
#include "run/JobKind.h"

// A picture that is carved. Sizes and steps are fitted to whole pulses and pixels, as on the screen.
class CPictureJob : public CJobKind
{
public:
    std::vector<stJobField> Fields() override;
    bool Load(const stJobFile& file, QString& strWhy) override;
    std::vector<stJobError> Errors() const override;
    QString Size() const override;
    bool WriteGCode(const QString& strFile) override;
    void Start(AppControl& app, const stRunOptions& options) override;
    stReliefBlock Block() const override;

private:
    void Fit();

    stImgCarvingData m_Data;   // until the start
    stReliefBlock m_Block;
    int m_iRows = 0, m_iCols = 0;                             // pixels
    bool m_bByWidth = false;                                  // the width was given, and not the length
    double m_fLength = 0.0, m_fXStep = 0.0, m_fYStep = 0.0;   // as given; 0: not
};
