#include "run/HeadlessScreen.h"

#include "time/Wait.h"

#include <cstdio>
#include <unistd.h>

static constexpr qint64 PROGRESS_MS = 100;

CHeadlessScreen::CHeadlessScreen(const QString& strFile, bool bQuiet)
    : m_strFile(strFile), m_bQuiet(bQuiet), m_bProgress(!bQuiet && isatty(STDERR_FILENO) == 1)
{
}

// What is told before is told at the zero: the clock of before would be another one, and differ from run to run.
qint64 CHeadlessScreen::SinceBegin() const
{
    return m_lBegin < 0 ? 0 : CWait::Now() - m_lBegin;
}

QString CHeadlessScreen::OneLine(const QString& strText)
{
    QString strLine;   // built, not replaced in place: that moves the whole rest at each line break
    strLine.reserve(strText.size());
    for (const QChar c : strText) {
        if (c == QLatin1Char('\n'))
            strLine += QLatin1String(" / ");
        else
            strLine += c.category() == QChar::Other_Control ? QLatin1Char('?') : c;
    }
    return strLine;
}

void CHeadlessScreen::AddLogMsg(const QString& strMsg, eAppMsgType eType)
{
    if (strMsg.isEmpty()) return;
    const stTold told{SinceBegin(), m_lLine, eType, OneLine(strMsg)};
    const std::lock_guard lock(m_Mutex);
    m_lTold = m_lTold + 1;
    if (m_lstTold.size() < MAX_KEPT) m_lstTold.push_back(told);
    if (eType != MSG_ERROR) {
        if (!m_bQuiet)
            Print(QStringLiteral("[%1 s] %2").arg(static_cast<double>(told.lTime) / 1e9, 0, 'f', 3).arg(told.strText));
        return;
    }
    const QString strWhere = told.lLine > 0 ? m_strFile + m_strLineForm.arg(told.lLine) + QLatin1Char(' ') : QString();
    Print(strWhere + told.strText);
}

void CHeadlessScreen::ShowCriticalBox(const QString& strTitle, const QString& strText)
{
    AddLogMsg(strTitle + QStringLiteral(": ") + strText, MSG_ERROR);
}

void CHeadlessScreen::Say(const QString& strText)
{
    const std::lock_guard lock(m_Mutex);
    Print(OneLine(strText));
}

std::vector<stTold> CHeadlessScreen::Told()
{
    const std::lock_guard lock(m_Mutex);
    return m_lstTold;
}

void CHeadlessScreen::Print(const QString& strLine)
{
    ClearProgress();
    std::fputs((strLine + QLatin1Char('\n')).toUtf8().constData(), stderr);
}

void CHeadlessScreen::ShowProgress()
{
    if (!m_bProgress || m_lLine == 0) return;
    const std::lock_guard lock(m_Mutex);
    if (m_Shown.isValid() && m_Shown.elapsed() < PROGRESS_MS) return;
    m_Shown.start();
    const qint64 lShare = m_lLines > 0 ? 100 * m_lLine / m_lLines : 0;
    std::fputs(QStringLiteral("\r\x1b[K%1 %   line %2 of %3   machine time %4 s")
                   .arg(lShare, 3)
                   .arg(static_cast<qint64>(m_lLine))
                   .arg(m_lLines)
                   .arg(static_cast<double>(SinceBegin()) / 1e9, 0, 'f', 1)
                   .toUtf8()
                   .constData(),
               stderr);
    m_bShown = true;
}

void CHeadlessScreen::EndProgress()
{
    const std::lock_guard lock(m_Mutex);
    ClearProgress();
}

void CHeadlessScreen::ClearProgress()
{
    if (m_bShown) std::fputs("\r\x1b[K", stderr);
    m_bShown = false;
}
