#pragma once
#include <QString>
#include <QStringList>

// The settings of AppConfig by the names of their members, for whoever has no screens: "m_fZSafePos",
// "m_fAxisAcc[0]", "m_GCodeRunSettings.bUsePrgmFeed", "m_lstIPs[2]". Interface thread, while no operation runs.
//
// Order of a start: LoadConfig; Set for each assignment; then ApplyBoardPins, DeriveFeeds and DerivePwmFrequency
// (ApplySettings calls these three), before pins and axes are set up.
class CSettingsTable
{
public:
    // "NAME=VALUE" in the units of the member. Without an index an array takes the value in all elements. Refused
    // with a text in strWhy, and without any effect: unknown names and indices, values that cannot be read, that do
    // not fit the member's width, are not finite or none of its choices, and members that follow from others.
    static bool Set(const QString& strAssignment, QString& strWhy);

    // What follows from the settings.
    static void ApplySettings();

    // "NAME=VALUE", one line an element, in the order of AppConfig.
    static QStringList List();
};
