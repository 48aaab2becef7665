#include "config/AppConfig.h"
#include "config/SettingsTable.h"
#include "fuzz/FuzzEntries.h"

#include <QBuffer>

// A configuration file.
int FuzzConfig(const uint8_t* pData, size_t uSize)
{
    QByteArray bytes(reinterpret_cast<const char*>(pData), qsizetype(uSize));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    AppConfig::WithdrawBoardPins();
    (void)AppConfig::ReadConfig(buffer);
    CSettingsTable::ApplySettings();
    (void)CSettingsTable::List();
    return 0;
}
