#pragma once
#include <QMap>
#include <QString>

// What each pin in force is for, by Broadcom number, from AppConfig. A pin that two settings claim names both.
QMap<int, QString> PinRoles();
