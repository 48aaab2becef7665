#pragma once
#include <QMutex>

class CdlgMyHorizSlideBar;
class CScreenHost;
class QWidget;

// The overrides of the feeds and their bars, percent of the user feeds. Interface thread.
class CFeedPanel
{
public:
    CFeedPanel(CdlgMyHorizSlideBar& G01, CdlgMyHorizSlideBar& G00, CScreenHost& host)
        : m_G01FeedBar(G01), m_G00FeedBar(G00), m_Host(host)
    {
    }

    void SetUp(QWidget* pFrame);   // as the factors are stored
    void SetFeed(short iPercentage);
    void SetRapid(short iPercentage);
    void ChangeFeed(int iStep);   // by a key; the bar follows
    void Reapply();               // the operator's override, back on the axes

private:
    bool MayRebuild() const;

    CdlgMyHorizSlideBar &m_G01FeedBar, &m_G00FeedBar;
    CScreenHost& m_Host;
    QMutex m_mtxFeed;
};
