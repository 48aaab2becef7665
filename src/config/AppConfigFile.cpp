#include "common/FileWriter.h"
#include "common/OperatorScreen.h"
#include "common/Paths.h"
#include "config/AppConfig.h"

#include <QDataStream>
#include <QFile>

// The configuration file: a version string and 45 fields, big-endian, without any other frame. Writer and reader walk
// the same lists of fields, so that they cannot part.

namespace {
constexpr int STREAM_VERSION = 7;

class CFieldWriter
{
public:
    explicit CFieldWriter(QDataStream& stream) : m_Stream(stream) {}
    template <class T> void Byte(const T& value) { m_Stream << static_cast<quint8>(static_cast<qint32>(value)); }
    void Flag(bool bValue) { m_Stream << static_cast<quint8>(bValue ? 1 : 0); }
    template <class T> void Number(const T& value) { m_Stream << value; }
    template <class T, size_t N> void Floats(const T (&values)[N])
    {
        for (const T& value : values) m_Stream << static_cast<double>(value);
    }

private:
    QDataStream& m_Stream;
};

// What lies beyond the end of the file reads as zero.
class CFieldReader
{
public:
    explicit CFieldReader(QDataStream& stream) : m_Stream(stream) {}
    template <class T> void Byte(T& value) { value = static_cast<T>(Read<quint8>()); }
    void Flag(bool& bValue) { bValue = Read<quint8>() != 0; }
    template <class T> void Number(T& value) { value = Read<T>(); }
    template <class T, size_t N> void Floats(T (&values)[N])
    {
        for (T& value : values) value = Read<double>();
    }

private:
    template <class T> T Read()
    {
        T value = T();
        m_Stream >> value;
        return value;
    }
    QDataStream& m_Stream;
};

using A = AppConfig;

template <class IO> void BoardField(IO& io)
{
    io.Byte(A::m_eVantorCtrl);
}
template <class IO> void LineFields(IO& io)
{
    io.Flag(A::m_bHomeSensorsUsed);
    io.Flag(A::m_bPWMCtrlUsed);
    io.Flag(A::m_bKeyboardCtrlUsed);
    io.Number(A::m_stPwmSpndlSettings.iMinFreq);
    io.Number(A::m_stPwmSpndlSettings.iMaxFreq);
    io.Number(A::m_stPwmSpndlSettings.iFreqStep);
    io.Number(A::m_stPwmSpndlSettings.iTimeDelay);
}
template <class IO> void MotionFields(IO& io)
{
    io.Floats(A::m_fMaxAxisFeed);
    io.Floats(A::m_fUserAxisFeed);
    io.Floats(A::m_fAxisFeedPercent);
    io.Floats(A::m_fAxisAcc);
    io.Floats(A::m_fAxisRateOfAcc);
    io.Floats(A::m_fAxisMovPerPulse);
    io.Floats(A::m_fAxisWorkZero);
    io.Floats(A::m_fAxisPosDirLimit);
    io.Floats(A::m_fAxisNegDirLimit);
    io.Flag(A::m_bAppPassword);
    io.Number(A::m_strAppPassword);
    io.Byte(A::m_eSelUnits);
    io.Flag(A::m_bShutdownRPI);
    io.Floats(A::m_fAxisHomeFeed);
    io.Floats(A::m_fAxisJogFeed);
    for (eDirection& eDir : A::m_eAxisPosDir) io.Byte(eDir);
    for (eDirection& eDir : A::m_eAxisHomeDir) io.Byte(eDir);
    io.Floats(A::m_fAxisDutyCycle);
    io.Byte(A::m_eAxisFeedtype);
    io.Number(A::m_fZSafePos);
    io.Flag(A::m_bAutoHmOnStartup);
}
template <class IO> void JobFields(IO& io)
{
    io.Byte(A::m_GCodeRunSettings.iHomeRef);
    io.Flag(A::m_GCodeRunSettings.bUsePrgmFeed);
    io.Flag(A::m_GCodeRunSettings.bSaveExecStatus);
    io.Flag(A::m_GCodeRunSettings.bUsePrgmSpindleSpeed);
    io.Number(A::m_GCodeRunSettings.fAxisStep);
    for (qint16& iSpeed : A::m_iSpindleSpeeds) io.Number(iSpeed);
    io.Number(A::m_fEndMillDia);
    io.Number(A::m_iVelAccSamplingTime);
    io.Flag(A::m_bAutoSpindleOnCW);
    io.Flag(A::m_bAutoSpindleOnCCW);
    io.Flag(A::m_bAutoSpindleOff);
    io.Floats(A::m_fAxisManualToolChngPos);
    io.Flag(A::m_bEnlManualToolChange);
    io.Flag(A::m_bEnlAutoToolChange);
    io.Number(A::m_fHomeRepeatOffset);
}
template <class IO> void JogField(IO& io)
{
    io.Flag(A::m_bUseG01FeedForJog);
}
}   // namespace

bool AppConfig::ReadConfig(QIODevice& device)
{
    QDataStream stream(&device);
    stream.setVersion(STREAM_VERSION);
    CFieldReader reader(stream);
    QString strVersion;
    stream >> strVersion;
    BoardField(reader);
    ApplyBoardPins();
    LineFields(reader);
    DerivePwmFrequency();
    MotionFields(reader);
    JobFields(reader);
    if (strVersion != SOFTWARE_VERSION) return false;
    JogField(reader);
    return true;
}

bool AppConfig::LoadConfig(QString path)
{
    path = CPaths::Map(path);
    if (!QFile::exists(path)) CreateConfigFile(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        COperatorScreen::Get().ShowCriticalBox(QStringLiteral("Critical error"),
                                               QStringLiteral("Unable to open Config File"));
        return false;
    }
    try {
        // The upgrade of an older file goes to the product's own place, whatever file was read: wanted, since a
        // file that was only tried out must stay as it is.
        if (!ReadConfig(file)) SaveConfig(CONFIG_FILE);
    } catch (...) {
        CreateConfigFile(path);
        return false;
    }
    file.close();
    DeriveFeeds();
    return true;
}

bool AppConfig::SaveConfig(QString path)
{
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    stream.setVersion(STREAM_VERSION);
    CFieldWriter writer(stream);
    stream << SOFTWARE_VERSION;
    BoardField(writer);
    LineFields(writer);
    MotionFields(writer);
    JobFields(writer);
    JogField(writer);
    if (ReplaceFile(CPaths::Map(path), content)) return true;
    COperatorScreen::Get().AddLogMsg(QStringLiteral("Unable to write Config File"), MSG_ERROR);
    return false;
}

void AppConfig::CreateConfigFile(QString path)
{
    SaveConfig(path);
}
