#include "motion/RampTable.h"

#include "common/UnitConverter.h"
#include "config/AppConfig.h"

#include <algorithm>
#include <cmath>

// The arithmetic here is the required one, additions included; a closed form would give other tables than the
// machine's.

stRampSettings stRampSettings::OfAxis(int axis)
{
    return {.fStep = AppConfig::m_fAxisMovPerPulse[axis],
            .fDuty = AppConfig::m_fAxisDutyCycle[axis],
            .fRateOfAcc = AppConfig::m_fAxisRateOfAcc[axis],
            .uSampleUs = AppConfig::m_iVelAccSamplingTime,
            .bSCurve = AppConfig::m_eAxisFeedtype == 1};
}

namespace {
struct stRampJob
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
double EstimateEntries(const stRampSettings& settings, double fVel, double fAccMm)
{
    const double fTop = fVel / settings.fStep, fAcc = fAccMm / settings.fStep;
    const double fJerk = settings.fRateOfAcc / settings.fStep;
    const double fSample = static_cast<double>(settings.uSampleUs) / 1000000.0;
    if (!settings.bSCurve) return fTop * fTop / (2.0 * fAcc) + fTop * fSample;
    // Time to half the speed; each sample of both halves makes one entry at least.
    const double fRise = fAcc * fAcc / fJerk >= fTop ? std::sqrt(fTop / fJerk)
                                                     : fAcc / fJerk + (fTop / 2.0 - fAcc * fAcc / (2.0 * fJerk)) / fAcc;
    return fTop * (fRise + fSample) + 2.0 * fRise / fSample;
}

// The first speed is the one reached after one sampling time.
void BuildTrapezoid(const stRampJob& job)
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
void BuildSCurve(const stRampJob& job, std::vector<double>& accList)
{
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
}   // namespace

double FirstSpeed(const stRampSettings& settings, double fVel, double fAcc)
{
    const double fSample = static_cast<double>(settings.uSampleUs) / 1e6;
    const double fFirstAcc = settings.bSCurve ? std::min(fAcc, settings.fRateOfAcc * fSample) : fAcc;
    return std::min(fVel, fFirstAcc * fSample) / settings.fStep;
}

QString WhyNoRamp(const stRampSettings& settings, double fVel, double fAcc)
{
    // Written so that "not a number" is refused too.
    if (!(fAcc > 0.0)) return QStringLiteral("acceleration must be greater than zero");
    if (!(fVel > 0.0)) return QStringLiteral("feed must be greater than zero");
    if (CUnitConverter::GetLong(settings.fStep) < 1) return QStringLiteral("move per pulse must be 0.0001 or more");
    if (!(settings.fDuty > 0.0 && settings.fDuty < 1.0)) return QStringLiteral("duty cycle must be between zero and 1");
    if (settings.uSampleUs == 0) return QStringLiteral("sampling time must be greater than zero");
    if (settings.bSCurve && !(settings.fRateOfAcc > 0.0))
        return QStringLiteral("rate of acceleration must be greater than zero");
    if (!(EstimateEntries(settings, fVel, fAcc) <= static_cast<double>(MAX_RAMP_ENTRIES)))
        return QStringLiteral("acceleration is too low for this feed");
    if (!(1e9 / FirstSpeed(settings, fVel, fAcc) <= MAX_PULSE_NS))
        return QStringLiteral("feed or acceleration is too low: a pulse would last longer than a clock can count");
    return QString();
}

size_t MostRampEntries(const stRampSettings& settings, double fVel, double fAcc)
{
    if (!WhyNoRamp(settings, fVel, fAcc).isEmpty()) return 0;
    return static_cast<size_t>(EstimateEntries(settings, fVel, fAcc)) + 1;
}

void BuildRamp(const stRampSettings& settings, double fVel, double fAcc, stRampTable& table,
               std::vector<double>* pCurve)
{
    const double fTop = fVel / settings.fStep;
    const double fPeriod = 1000000.0 / fTop;   // us
    table.fConstHigh = settings.fDuty * fPeriod;
    table.fConstLow = fPeriod - table.fConstHigh;
    table.lstHigh.clear();
    table.lstLow.clear();
    if (pCurve) pCurve->clear();
    const stRampJob job{table.lstHigh,
                        table.lstLow,
                        pCurve,
                        fTop,
                        fAcc / settings.fStep,
                        settings.fRateOfAcc / settings.fStep,
                        static_cast<double>(settings.uSampleUs),
                        fPeriod * settings.fDuty};
    if (settings.bSCurve)
        BuildSCurve(job, table.lstAcc);
    else
        BuildTrapezoid(job);
    table.fConstHigh *= 1000.0;
    table.fConstLow *= 1000.0;
}
