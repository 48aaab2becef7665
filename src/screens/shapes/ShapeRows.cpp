#include "screens/shapes/ShapeRows.h"

#include <QListWidget>

int CShapeRows::Current() const
{
    const int iRow = m_List.currentRow();
    return iRow >= 0 && static_cast<size_t>(iRow) < m_Job.Count() ? iRow : -1;
}

void CShapeRows::Remove(int iRow)
{
    m_Job.Erase(static_cast<size_t>(iRow));
    delete m_List.takeItem(iRow);
}

void CShapeRows::RemoveAll()
{
    m_Job.EraseAll();
    m_List.clear();
}

bool CShapeRows::MoveCurrent(int iStep)
{
    const int iRow = Current(), iOther = iRow + iStep;
    if (iRow < 0 || iOther < 0 || iOther >= m_List.count()) return false;
    m_Job.Swap(static_cast<size_t>(iRow), static_cast<size_t>(iOther));
    const QString strText = m_List.item(iRow)->text();
    m_List.item(iRow)->setText(m_List.item(iOther)->text());
    m_List.item(iOther)->setText(strText);
    m_List.setCurrentRow(iOther);
    return true;
}

bool CShapeRows::AppendAdded()
{
    QStringList names;
    for (const stEngShape& shape : m_Job.Added()) names.append(shape.Common().strShapeName);
    m_List.addItems(names);
    if (names.isEmpty()) return false;
    m_List.setCurrentRow(m_List.count() - 1);
    return true;
}

void CShapeRows::ShowAll(const stEngShape& current)
{
    m_List.clear();
    for (const stEngShape& shape : m_Job.Info().lstShapes) {
        m_List.addItem(shape.Common().strShapeName);
        if (shape.pEllipse == current.pEllipse && shape.pPolygon == current.pPolygon)
            m_List.setCurrentRow(m_List.count() - 1);
    }
}

void CShapeRows::ShowName(int iRow, const QString& strName)
{
    m_List.item(iRow)->setText(strName);
}
