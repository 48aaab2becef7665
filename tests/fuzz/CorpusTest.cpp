#include "cases/Cases.h"
#include "fuzz/FuzzEntries.h"
#include "support/CleanMachine.h"

namespace {
struct stEntry
{
    const char* szFolder;
    int (*fnEntry)(const uint8_t*, size_t);
};
class FuzzCorpus : public CCleanMachine, public testing::WithParamInterface<stEntry>
{
};
}   // namespace

// What the fuzzer has found once stays found: the sanitizers' builds run this too. Each file also cut short.
TEST_P(FuzzCorpus, IsDigested)
{
    const QString strFolder = GetParam().szFolder;
    const auto lstFiles = CCases::Names(strFolder, "");
    ASSERT_FALSE(lstFiles.empty());
    for (const std::string& strFile : lstFiles) {
        const QByteArray bytes = CCases::Bytes(strFolder, QString::fromStdString(strFile));
        for (const qsizetype iSize : {bytes.size(), bytes.size() / 2, qsizetype(0)})
            EXPECT_EQ(GetParam().fnEntry(reinterpret_cast<const uint8_t*>(bytes.constData()), size_t(iSize)), 0);
    }
}
INSTANTIATE_TEST_SUITE_P(Entries, FuzzCorpus,
                         testing::Values(stEntry{"fuzz/gcode", FuzzGCode}, stEntry{"fuzz/config", FuzzConfig},
                                         stEntry{"fuzz/dxf", FuzzDxf}));
