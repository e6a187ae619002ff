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
    CancelIf(m_call == Call::Open);
    return descriptor;
}

ssize_t CancelAt::PWrite(int descriptor, const void* data, size_t length, off_t position)
{
    CancelIf(m_call == Call::Write && descriptor == m_descriptor);
    return FileCalls::PWrite(descriptor, data, length, position);
}

int CancelAt::FSync(int descriptor)
{
    CancelIf(m_call == Call::Sync && descriptor == m_descriptor);
    return FileCalls::FSync(descriptor);
}

void CancelAt::CancelIf(bool reached)
{
    CProgressDlg* const progress = m_progress;
    if (reached && progress)
        progress->Cancel();
}

} // namespace ek
