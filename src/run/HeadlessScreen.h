#pragma once
#include "common/OperatorScreen.h"
#include "common/Shared.h"

#include <QElapsedTimer>

#include <mutex>
#include <vector>

// One message of a run, for the summary.
struct stTold
{
    qint64 lTime;   // ns since the run began
    qint64 lLine;   // of the program, 1-based; 0: none
    eAppMsgType eType;
    QString strText;   // on one line
};

// The operator's screen of a run that nobody watches: messages and, on a terminal, a line of progress go to standard
// error. Any thread.
class CHeadlessScreen : public COperatorScreen
{
public:
    // strFile as it is to be told; bQuiet: errors only.
    CHeadlessScreen(const QString& strFile, bool bQuiet);

    // Nothing is shown, so nothing is to be disabled, emptied or made anew; the runner sees an end by itself.
    void EnableDisableWindows() override {}
    void ClearToolGraphics() override {}
    void OnOperationFinish() override {}
    void UpdateWorkArea() override {}
    void AddLogMsg(const QString& strMsg, eAppMsgType eType) override;
    void ShowCriticalBox(const QString& strTitle, const QString& strText) override;

    // An error of the system: told as "FILE:LINE: TEXT" while a line of the program runs.
    void AddError(const QString& strMsg) { AddLogMsg(strMsg, MSG_ERROR); }
    // Of the runner itself; no message of the run.
    void Say(const QString& strText);

    void SetBegin(qint64 lBegin) { m_lBegin = lBegin; }    // ns of CWait::Now, the zero of its times
    void SetLines(qint64 lLines, const QString& strForm)   // how many, and how one is told behind the file's name
    {
        m_lLines = lLines;
        m_strLineForm = strForm;
    }
    void SetLine(qint64 lLine) { m_lLine = lLine; }   // 1-based; 0: none
    qint64 Line() const { return m_lLine; }
    // At most ten times a second.
    void ShowProgress();
    void EndProgress();

    std::vector<stTold> Told();
    qint64 ToldCount() const { return m_lTold; }   // also those beyond what is kept

    // A text of the system on one line: line breaks as " / ", other control characters as "?".
    static QString OneLine(const QString& strText);

private:
    static constexpr size_t MAX_KEPT = 1000;
    qint64 SinceBegin() const;
    void Print(const QString& strLine);
    void ClearProgress();

    const QString m_strFile;
    QString m_strLineForm = QStringLiteral(":%1:");
    const bool m_bQuiet, m_bProgress;
    CShared<qint64> m_lLine = 0, m_lTold = 0;
    qint64 m_lLines = 0, m_lBegin = -1;   // negative: not begun
    std::mutex m_Mutex;
    std::vector<stTold> m_lstTold;
    QElapsedTimer m_Shown;
    bool m_bShown = false;
};
