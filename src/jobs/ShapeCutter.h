#pragma once
#include "machine/Machine.h"
#include "shapes/ShapeModel.h"

#include <QString>

// The shapes of a job: cut on the machine, or written as a program.
class CShapeCutter
{
public:
    explicit CShapeCutter(CMachine& machine) : m_Machine(machine) {}

    void CutShapes();                               // worker
    void CreateGCodeFromShapes(QString fileName);   // no axis moves

    stShapeCuttingInfo* m_pShapeCuttingInfo = nullptr;   // owned by the caller, read until the operation has ended

private:
    CMachine& m_Machine;
};
