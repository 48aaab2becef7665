#include "common/UnitConverter.h"
#include "config/AppConfig.h"
#include "motion/AxisCtrl.h"

#include <QMutexLocker>

#include <cmath>

// The ramp tables. An axis does not compute speed while it moves: at 1.5 MHz it can't. The arithmetic here is the
// required one, additions included; a closed form would give other tables than the machine's.

struct AxisCtrl::stRampJob
{
    std::vector<double>& high;
    std::vector<double>& low;
    std::vector<double>* pCurve;   // pulses/s, or null
    double fTop;                   // pulses/s
    double fAcc;                   // pulses/s^2
    double fJerk;                  // pulses/s^3
    double fSample;                // us
    double fHigh;                  // us, of every pulse of the ramp: only the low time stretches at low speed

    // Holds one speed for one pulse, or for as many as fill a sampling time; moves the ramp clock (us) on.
    // False: the pulse would have no low time, and the ramp ends.
    bool Hold(double fVel, double& tm) const
    {
        if (pCurve) pCurve->push_back(fVel);
        double p = 1000000.0 / fVel;
        const double fLow = p - fHigh;
        if (!(fLow > 0.0)) return false;
        size_t uRepeats = 1;
        if (p < fSample) {
            const double b = p;
            for (uRepeats = 0; p < fSample; ++uRepeats) p += b;
        }
        tm += p;
        high.insert(high.end(), uRepeats, fHigh * 1000.0);
        low.insert(low.end(), uRepeats, fLow * 1000.0);
        return true;
    }
};

// Entries of the ramp, from above; building it to find out would take as long as the refused ramp is.
static double EstimateEntries(double fTop, double fAcc, double fJerk, double fSampleUs, bool bSCurve)
{
    const double fSample = fSampleUs / 1000000.0;
    if (!bSCurve) return fTop * fTop / (2.0 * fAcc) + fTop * fSample;
    // Time to half the speed; each sample of both halves makes one entry at least.
    const double fRise = fAcc * fAcc / fJerk >= fTop ? std::sqrt(fTop / fJerk)
                                                     : fAcc / fJerk + (fTop / 2.0 - fAcc * fAcc / (2.0 * fJerk)) / fAcc;
    return fTop * (fRise + fSample) + 2.0 * fRise / fSample;
}

bool AxisCtrl::RefuseBuild(const QString& strWhy)
{
    const QMutexLocker lock(&m_TextMutex);
    m_strBuildErr = strWhy;
    return strWhy.isEmpty();
}

bool AxisCtrl::CheckRamp(double fVel, double fAcc)
{
    const QString& strAxis = AppConfig::m_strAxisNames[m_sAxis];
    const auto Must = [&](const char* szWhat) { return RefuseBuild(strAxis + QLatin1String(szWhat)); };
    const double fStep = AppConfig::m_fAxisMovPerPulse[m_sAxis], fDuty = AppConfig::m_fAxisDutyCycle[m_sAxis];
    const double fJerk = AppConfig::m_fAxisRateOfAcc[m_sAxis];
    const bool bSCurve = AppConfig::m_eAxisFeedtype == 1;

    // Written so that "not a number" is refused too.
    if (!(fAcc > 0.0)) return Must(" acceleration must be greater than zero");
    if (!(fVel > 0.0)) return Must(" feed must be greater than zero");
    if (CUnitConverter::GetLong(fStep) < 1) return Must(" move per pulse must be 0.0001 or more");
    if (!(fDuty > 0.0 && fDuty < 1.0)) return Must(" duty cycle must be between zero and 1");
    if (AppConfig::m_iVelAccSamplingTime == 0) return Must(" sampling time must be greater than zero");
    if (bSCurve && !(fJerk > 0.0)) return Must(" rate of acceleration must be greater than zero");
    const double fEntries = EstimateEntries(fVel / fStep, fAcc / fStep, fJerk / fStep,
                                            static_cast<double>(AppConfig::m_iVelAccSamplingTime), bSCurve);
    if (!(fEntries <= static_cast<double>(MAX_RAMP_ENTRIES))) return Must(" acceleration is too low for this feed");
    return RefuseBuild(QString());
}

bool AxisCtrl::SetVelocityAcc(double fVel, double fAcc)
{
    const QMutexLocker lock(&m_Mutex);
    if (!CheckRamp(fVel, fAcc)) return false;

    const size_t t = 1u - m_ucCurTable;
    const double fMovPerPulse = AppConfig::m_fAxisMovPerPulse[m_sAxis];
    const double fDuty = AppConfig::m_fAxisDutyCycle[m_sAxis];
    m_fVel[t] = fVel;
    const double fTop = fVel / fMovPerPulse;
    const double fPeriod = 1000000.0 / fTop;   // us
    m_fConstHighTime[t] = fDuty * fPeriod;
    m_fConstLowTime[t] = fPeriod - m_fConstHighTime[t];

    // Cleared, never given back: a build between two moves allocates nothing.
    m_lstHighTime[t].clear();
    m_lstLowTime[t].clear();
    if (m_bStoreVelCurve) m_lstVelCurve.clear();
    const stRampJob job{m_lstHighTime[t],
                        m_lstLowTime[t],
                        m_bStoreVelCurve ? &m_lstVelCurve : nullptr,
                        fTop,
                        fAcc / fMovPerPulse,
                        AppConfig::m_fAxisRateOfAcc[m_sAxis] / fMovPerPulse,
                        static_cast<double>(AppConfig::m_iVelAccSamplingTime),
                        fPeriod * fDuty};
    if (AppConfig::m_eAxisFeedtype == 1)
        BuildSCurve(job);
    else
        BuildTrapezoid(job);

    m_fConstHighTime[t] *= 1000.0;
    m_fConstLowTime[t] *= 1000.0;
    m_bNewTable = true;
    return true;
}

// The first speed is the one reached after one sampling time.
void AxisCtrl::BuildTrapezoid(const stRampJob& job)
{
    double tm = job.fSample, v = 0.0;
    while (job.fTop - v > SMALL_NUMBER_TO_CHECK_ZERO) {
        v = (tm / 1000000.0) * job.fAcc;
        if (job.fTop < v) v = job.fTop;
        if (!job.Hold(v, tm)) return;
    }
}

// Velocity is the sum over fixed samples while the ramp clock moves by whole pulses: a low sampling time or top speed
// makes the first half steeper than the rate of acceleration alone suggests, and may jump over the speed asked for.
void AxisCtrl::BuildSCurve(const stRampJob& job)
{
    std::vector<double>& accList = m_lstAcc;
    accList.clear();
    const double fHalf = job.fTop / 2.0, dt = job.fSample;
    double tm = job.fSample, v = 0.0;
    size_t k = 0;
    while (job.fTop > v) {
        double a = (tm / 1000000.0) * job.fJerk;
        if (job.fAcc < a) a = job.fAcc;
        if (fHalf > v) {
            accList.push_back(a);
            v += accList.back() * (dt / 1000000.0);
            k += 1;
        } else {
            if (k == 0) k = 1;
            v += accList[k - 1] * (dt / 1000000.0);   // the accelerations of the first half, backwards
            if (job.fTop <= v) break;                 // this sample makes no entry
            k -= 1;
        }
        if (!job.Hold(v, tm)) return;
    }
}
