#pragma once
#include "shapes/DisplayScale.h"
#include "shapes/ShapeModel.h"

#include <QStringList>

#include <span>

// The list of a shape job with its pockets: here entries come and go, and here it is known which of them belong
// together. Those that a dialog has added since BeginAdding are its own until the next one begins. mm. Interface
// thread.
class CShapeJob
{
public:
    const stShapeCuttingInfo& Info() const { return m_stCuttingInfo; }
    size_t Count() const { return m_stCuttingInfo.lstShapes.size(); }
    stPolygon* PolygonAt(size_t uIndex) const;   // null: no such entry, or no polygon
    stEllipse* EllipseAt(size_t uIndex) const;
    stPolygon* LastPolygon() const;
    void RemoveLastPoint();   // of a polygon that is drawn; a ring keeps its points

    void Erase(size_t uIndex);
    void EraseAll() { m_stCuttingInfo.lstShapes.clear(); }
    void Swap(size_t uIndex, size_t uOther);

    // ---- What a dialog adds ----
    void BeginAdding();
    size_t FirstAdded() const { return m_uShapeCountBefore; }
    std::span<const stEngShape> Added() const;
    stEllipse& AddEllipse(const QString& strName);
    stPolygon& AddPolygon(const QString& strName, ShapePath path = {});
    void EraseAdded() { EraseFrom(m_uShapeCountBefore); }
    void SetAddedDepth(double fDepth);
    void SetFirstAddedDepth(double fDepth);   // of a polygon, and of the outline that its pocket has put aside
    void NumberAdded(const stShapesCommonInfo& common);   // its name and "_1" and so on; its depth for all

    // ---- Pockets ----
    // Those of ellipses: rings belong to their outline, and come and go with it.
    size_t OutlineOf(size_t uIndex) const;   // of a ring; any other entry is its own
    std::vector<size_t> RingsOf(size_t uOutline) const;
    // The rings inside an ellipse become entries of the dialog. For the log: why some are missing, or have no points.
    QStringList MakeEllipsePocket(size_t uOutline);
    void EraseRings(size_t uOutline);
    // A dialog edits an entry that was there: until EndEditing the rings of its pocket are entries of the dialog too.
    // Gives where the entry lies now.
    size_t BeginEditing(size_t uIndex);
    void EndEditing(bool bKeep);   // new rings take the place of the old ones; or all is in the list that was there
    // The end mill has changed: all ellipses with their rings are made anew, as a file's are that is loaded. For the
    // log, with the names of what keeps the old tool's path: pockets drawn by hand are not remade.
    QStringList RemakeEllipses();
    // Those drawn by hand.
    // The rings that clear the last polygon take its place. False: the tool does not fit, and nothing has changed but
    // that the outline is closed.
    bool MakePocket(const stDisplayScale& scale, double fEndMillDia);
    void DropPocket();   // the outline comes back
    bool HasPocket() const { return m_Outline.pPolygon != nullptr; }

protected:
    stShapeCuttingInfo m_stCuttingInfo;
    size_t m_uShapeCountBefore = 0;   // entries from here on belong to the dialog that is open, or was the last

private:
    void EraseFrom(size_t uFirst);
    QStringList MakeRings(size_t uOutline, const QString& strName, size_t uFirst);   // strName_uFirst and so on
    QStringList RemakePocket(size_t uOutline);

    stEngShape m_Outline;                  // of a pocket drawn by hand, while its rings stand in the list
    std::vector<stEngShape> m_lstBefore;   // the list without the changes of a dialog
    size_t m_uPlaceOfRings = SIZE_MAX;     // of the old rings of an ellipse; none
};
