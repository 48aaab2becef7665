#pragma once
#include "common/ArcWalk.h"

#include <QStringList>

// How the words of an arc are read: here for whoever cuts it, and for whoever writes it and would know what it will be.
// mm, absolute coordinates in the arc's plane; no state; any thread.

// What the machine brings into it: a pulse of the plane's first and second axis, the step of the walk.
struct stArcRule
{
    double fFirstPulse = 0.0, fSecondPulse = 0.0, fStep = 0.1;
};

// A coordinate of the centre: I, J or K count from the start point, and less than a pulse is none.
double ArcCentre(double fStart, double fOffset, double fPulse);

// What the words of a line have left open: the radius, where no R has told it, and the end. An end at the zero point of
// the plane counts as not given and makes a full circle, on purpose. False: the centre lies on the start.
bool CompleteArc(stArcShape& arc, const stArcRule& rule);

// An arc word as it stands in a program, and what its writer means by it.
struct stWrittenArc
{
    stArcPoint start;         // where the tool has been sent before
    stArcPoint end, offset;   // the words X, Y and I, J
    eDirection eDir = DIR_CCW;
    double fSweep = 0.0;   // radians, from nothing to a whole turn
};

// From start to end; a whole turn where they are the same place. Radians, above 0.
double ArcSweep(const stArcPoint& start, const stArcPoint& end, const stArcPoint& centre, eDirection eDir);

// What becomes of an arc when it is run, in words that stand behind "the arc": empty where it is what is meant within
// fTolerance.
QString WhatBecomesOf(const stWrittenArc& arc, const stArcRule& rule, double fTolerance);

// Tells of the arcs of a program that will not be what is meant, within the resolution of the machine's own arcs: a
// step and a pulse. What is told twice in a row is told once, and a long list has an end.
class CArcCheck
{
public:
    CArcCheck(const stArcRule& rule, QStringList& lstNotices) : m_Rule(rule), m_lstNotices(lstNotices) {}
    ~CArcCheck();   // tells how many more there are
    // strWhose: the shape, for the notice; lLine: of the program, 1-based.
    void Check(const QString& strWhose, qint64 lLine, const stWrittenArc& arc);

private:
    const stArcRule m_Rule;
    QStringList& m_lstNotices;
    double m_fWalked = 0.0;   // points of all walks, about
    QString m_strLastTold;
    qint64 m_lTold = 0, m_lNotChecked = 0;
};
