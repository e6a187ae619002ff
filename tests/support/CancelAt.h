// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/ProgressDlg.h"
#include "platform/FileCalls.h"

#include <atomic>
#include <string>
#include <vector>

namespace ek {

/// Presses Cancel while the n-th file whose name contains a fragment is being opened, or later written or synced: at
/// the same point of the work every time. In force while it lives.
class CancelAt final : public ProgressPresenter, public FileCalls {
public:
    enum class Call { Open, Write, Sync };
    CancelAt(std::string pathFragment, int nth, Call call = Call::Open);
    ~CancelAt();

    const std::vector<std::string>& Captions() const { return m_captions; } ///< of the progresses shown

    WorkResult Show(CProgressDlg& progress) override;
    int Open(const char* path, int flags, mode_t mode) override;
    ssize_t PWrite(int descriptor, const void* data, size_t length, off_t position) override;
    int FSync(int descriptor) override;

private:
    void CancelIf(bool reached);

    const std::string m_pathFragment;
    const int m_nth;
    const Call m_call;
    std::atomic<int> m_opened = 0;
    std::atomic<int> m_descriptor = -1;
    std::atomic<CProgressDlg*> m_progress = nullptr;
    std::vector<std::string> m_captions;
    ScopedFileCalls m_installed;
};

} // namespace ek
