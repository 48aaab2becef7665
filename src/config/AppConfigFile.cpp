#include "common/FileWriter.h"
#include "common/OperatorScreen.h"
#include "common/Paths.h"
#include "config/AppConfig.h"
#include "config/ConfigNotice.h"

#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cmath>
#include <utility>

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
    bool IsSound() const { return m_bSound && m_Stream.status() == QDataStream::Ok; }
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
        if constexpr (std::is_same_v<T, double>) m_bSound = m_bSound && std::isfinite(value);
        return value;
    }
    QDataStream& m_Stream;
    bool m_bSound = true;   // every number read is one
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

// -1: no version of ours.
int VersionNumber(const QString& strVersion)
{
    static const QRegularExpression FORM(QStringLiteral("^Ver(\\d{1,4})\\.(\\d{1,4})$"));
    const QRegularExpressionMatch match = FORM.match(strVersion);
    return match.hasMatch() ? match.captured(1).toInt() * 10'000 + match.captured(2).toInt() : -1;
}

// A copy beside the file, under a name that no other content has; empty where none can be made.
QString KeepCopy(const QString& strPath, const QByteArray& content)
{
    static constexpr int MOST_COPIES = 20;
    for (int n = 1; n <= MOST_COPIES; ++n) {
        const QString strCopy = strPath + (n == 1 ? QStringLiteral(".kept") : QStringLiteral(".kept-%1").arg(n));
        QFile there(strCopy);
        if (!there.exists()) return ReplaceFile(strCopy, content) ? strCopy : QString();
        if (there.open(QIODevice::ReadOnly) && there.readAll() == content) return strCopy;
    }
    return {};
}
}   // namespace

static QString g_strNotice;

// Before the file is overwritten, by an upgrade or by the next save. Only the product's own ever is.
static void KeepAndNote(const QString& strPath, const QByteArray& content, const QString& strTrouble)
{
    QString strKept;
    if (strPath == CPaths::Map(CONFIG_FILE)) {
        const QString strCopy = KeepCopy(strPath, content);
        strKept = strCopy.isEmpty() ? QStringLiteral("\nNo copy of it could be kept.")
                                    : QStringLiteral("\nIt is kept as %1.").arg(strCopy);
    }
    g_strNotice = QStringLiteral("The configuration file %1%2\nCheck all settings before anything moves.")
                      .arg(strTrouble, strKept);
}

QString TakeConfigNotice()
{
    return std::exchange(g_strNotice, {});
}

// False as ReadConfig. strTrouble: what is wrong with the file, if anything is.
static bool ReadFile(QIODevice& device, QString& strTrouble)
{
    QDataStream stream(&device);
    stream.setVersion(STREAM_VERSION);
    CFieldReader reader(stream);
    QString strVersion;
    stream >> strVersion;
    BoardField(reader);
    A::ApplyBoardPins();
    LineFields(reader);
    A::DerivePwmFrequency();
    MotionFields(reader);
    JobFields(reader);
    const bool bOurs = strVersion == SOFTWARE_VERSION;
    if (bOurs) JogField(reader);
    const int iVersion = VersionNumber(strVersion);
    if (reader.IsSound() && iVersion > VersionNumber(SOFTWARE_VERSION))
        strTrouble =
            QStringLiteral("was written by the newer version %1: what that has added is not in force, and is lost "
                           "when settings are saved.")
                .arg(strVersion);
    else if (!reader.IsSound() || !device.atEnd() || iVersion < 0 || A::m_eVantorCtrl > SPI_CTRL_24)
        strTrouble = QStringLiteral("is damaged: settings that could not be read are zero, home sensors may be off.");
    return bOurs;
}

bool AppConfig::ReadConfig(QIODevice& device)
{
    QString strTrouble;
    return ReadFile(device, strTrouble);
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
    const QByteArray content = file.readAll();
    QBuffer buffer;
    buffer.setData(content);
    (void)buffer.open(QIODevice::ReadOnly);
    try {
        QString strTrouble;
        const bool bOurs = ReadFile(buffer, strTrouble);
        if (!strTrouble.isEmpty()) KeepAndNote(path, content, strTrouble);
        // The upgrade of an older file goes to the product's own place, whatever file was read: wanted, since a
        // file that was only tried out must stay as it is.
        if (!bOurs) SaveConfig(CONFIG_FILE);
    } catch (...) {
        KeepAndNote(path, content, QStringLiteral("can't be read."));
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
