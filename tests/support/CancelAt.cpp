// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/CancelAt.h"

#include <cstring>

namespace ek {

CancelAt::CancelAt(std::string pathFragment, int nth, Call call)
    : m_pathFragment(std::move(pathFragment)), m_nth(nth), m_call(call), m_installed(*this)
{
    SetProgressPresenter(this);
}

CancelAt::~CancelAt()
{
    SetProgressPresenter(nullptr);
}

WorkResult CancelAt::Show(CProgressDlg& progress)
{
    m_captions.push_back(progress.Caption());
    m_progress = &progress;
    progress.Begin();
    const WorkResult result = progress.WaitResult();
    m_progress = nullptr;
    progress.End();
    return result;
}

int CancelAt::Open(const char* path, int flags, mode_t mode)
{
    const int descriptor = FileCalls::Open(path, flags, mode);
    if (!std::strstr(path, m_pathFragment.c_str()) || ++m_opened != m_nth)
        return descriptor;
    m_descriptor = descriptor;
    CProgressDlg* const progress = m_progress;
    if (m_call == Call::Open && progress)
        progress->Cancel();
    return descriptor;
}

int CancelAt::FSync(int descriptor)
{
    CProgressDlg* const progress = m_progress;
    if (m_call == Call::Sync && descriptor == m_descriptor && progress)
        progress->Cancel();
    return FileCalls::FSync(descriptor);
}

} // namespace ek
