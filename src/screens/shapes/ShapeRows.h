#pragma once
#include "shapes/ShapeJob.h"

class QListWidget;

// The list on the screen: a row for each entry of the job, in the same order and with its name. Interface thread.
class CShapeRows
{
public:
    CShapeRows(QListWidget& list, CShapeJob& job) : m_List(list), m_Job(job) {}

    int Current() const;   // of an entry that is there; -1: none
    void Remove(int iRow);
    void RemoveAll();
    bool MoveCurrent(int iStep);   // false: it is at the end, or there is none
    bool AppendAdded();            // by the dialog that was open; the last is current. False: none
    void ShowAll(const stEngShape& current);
    void ShowName(int iRow, const QString& strName);

private:
    QListWidget& m_List;
    CShapeJob& m_Job;
};
