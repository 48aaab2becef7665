#include "config/AppConfig.h"

#include "cases/Cases.h"
#include "common/Paths.h"
#include "config/ConfigNotice.h"
#include "config/SettingsTable.h"
#include "support/CleanMachine.h"
#include "support/Files.h"

namespace {
QMap<QString, QString> Settings()
{
    QMap<QString, QString> map;
    for (const QString& strLine : CSettingsTable::List())
        map[strLine.section(QLatin1Char('='), 0, 0)] = strLine.section(QLatin1Char('='), 1);
    return map;
}

QString ConfigPath()
{
    return CPaths::Map(CONFIG_FILE);
}
class AppConfigFile : public CCleanMachine
{
};
}   // namespace

// Wherever the file ends, each setting is that of the whole file or zero, and what was whole stays whole.
TEST_F(AppConfigFile, CutShortAtEveryLengthReadsZerosBeyondItsEnd)
{
    WriteAll(ConfigPath(), CCases::Bytes("config", "04_old_version.dat"));
    ASSERT_TRUE(AppConfig::LoadConfig(CONFIG_FILE));   // an old file, so the new one is whole
    const QByteArray whole = ReadAll(ConfigPath());
    ASSERT_TRUE(AppConfig::LoadConfig(CONFIG_FILE));
    const auto full = Settings();

    QStringList lstReached;
    for (qsizetype n = 0; n <= whole.size(); ++n) {
        ResetStatics();
        const auto defaults = Settings();
        WriteAll(ConfigPath(), whole.left(n));
        ASSERT_TRUE(AppConfig::LoadConfig(CONFIG_FILE)) << n;
        const auto now = Settings();
        for (auto it = full.begin(); it != full.end(); ++it) {
            const QString& strName = it.key();
            const QString strValue = now.value(strName);
            if (strValue == *it) {
                if (!lstReached.contains(strName)) lstReached += strName;
                continue;
            }
            const bool bBoard = n < 17 && !strName.startsWith("m_f");   // its pins follow from the first byte
            EXPECT_TRUE(strValue.isEmpty() || strValue == "0" || bBoard || strValue == defaults.value(strName))
                << n << ' ' << strName.toStdString() << '=' << strValue.toStdString();
            EXPECT_FALSE(lstReached.contains(strName) && n > 17 && it->size() > 1) << n << ' ' << strName.toStdString();
        }
        if (HasFailure()) break;
    }
    EXPECT_EQ(Settings(), full);
}

// What a save or an upgrade would overwrite stays beside it, and is told; what is whole or only older is no news.
TEST_F(AppConfigFile, DamagedOrNewerIsToldAndKept)
{
    AppConfig::SaveConfig(CONFIG_FILE);
    const QByteArray whole = ReadAll(ConfigPath());
    const auto With = [&](qsizetype iAt, char c) { return QByteArray(whole).replace(iAt, 1, QByteArray(1, c)); };
    const struct
    {
        QByteArray content;
        const char* szTold;
    } rows[] = {{whole, ""},
                {CCases::Bytes("config", "04_old_version.dat"), ""},
                {{}, "is damaged"},
                {QByteArray(657, '\0'), "is damaged"},
                {whole.left(656), "is damaged"},
                {whole + '\0', "is damaged"},
                {With(5, 'v'), "is damaged"},
                {With(16, 4), "is damaged"},
                {With(28, char(0x7f)).replace(29, 1, "\xf8"), "is damaged"},   // a feed that is no number
                {With(11, '5') + "more", "the newer version Ver5.0"}};
    int iCopies = 0;
    for (const auto& [content, szTold] : rows) {
        for (const bool bAgain : {false, true}) {   // the copy is there already
            ResetStatics();
            WriteAll(ConfigPath(), content);
            ASSERT_TRUE(AppConfig::LoadConfig(CONFIG_FILE));
            const QString strNotice = TakeConfigNotice();
            EXPECT_EQ(strNotice.contains(szTold), true) << szTold;
            EXPECT_EQ(strNotice.isEmpty(), *szTold == 0);
            if (*szTold == 0) continue;
            iCopies += bAgain ? 0 : 1;
            const QString strCopy = ConfigPath() + (iCopies == 1 ? QString(".kept") : QString(".kept-%1").arg(iCopies));
            EXPECT_TRUE(strNotice.contains("kept as " + strCopy + '.')) << strNotice.toStdString();
            EXPECT_EQ(ReadAll(strCopy), content);
        }
    }
}

TEST_F(AppConfigFile, UpgradeGoesToTheProductsFileWhateverWasRead)
{
    const QString strOther = m_Home.filePath("other.dat");
    const QByteArray old = CCases::Bytes("config", "04_old_version.dat");
    WriteAll(strOther, old);
    EXPECT_TRUE(AppConfig::LoadConfig(strOther));
    EXPECT_EQ(TakeConfigNotice(), QString());
    EXPECT_EQ(ReadAll(strOther), old);
    EXPECT_EQ(ReadAll(ConfigPath()), CCases::Bytes("config", "04_old_version.after.dat"));
}

TEST_F(AppConfigFile, OddBytesSurviveASaveAndBooleansBecomeOne)
{
    AppConfig::m_eAxisPosDir[1] = static_cast<eDirection>(200);   // what the file says is what the machine does
    AppConfig::m_GCodeRunSettings.iHomeRef = 0x105;
    AppConfig::SaveConfig(CONFIG_FILE);
    QByteArray content = ReadAll(ConfigPath());
    content[17] = 7;   // the home sensors, behind version and board
    WriteAll(ConfigPath(), content);
    ASSERT_TRUE(AppConfig::LoadConfig(CONFIG_FILE));
    EXPECT_TRUE(AppConfig::m_bHomeSensorsUsed);
    EXPECT_EQ(Opposite(AppConfig::m_eAxisPosDir[1]), -199);
    EXPECT_EQ(AppConfig::m_GCodeRunSettings.iHomeRef, 5);
    AppConfig::SaveConfig(CONFIG_FILE);
    content[17] = 1;
    EXPECT_EQ(ReadAll(ConfigPath()).toHex(), content.toHex());
}
