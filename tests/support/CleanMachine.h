#pragma once
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Every static of the system as it is when the program starts, virtual pins low, and a home folder of the test's own.
class CCleanMachine : public testing::Test
{
protected:
    CCleanMachine();
    ~CCleanMachine() override;
    QTemporaryDir m_Home;
};

// The same for a fixture that is not a test.
void ResetStatics();
void ClearProgram();   // the store of the program
