#pragma once
#include <QString>

// What the operator must know of the configuration files loaded since the last call, before anything moves: one was
// damaged or of a newer version, and where its copy is. Empty: nothing. Interface thread.
QString TakeConfigNotice();
