// SPDX-License-Identifier: GPL-3.0-or-later

/// What the Vorbis library keeps when a header is broken, and of every encoder with more than two channels. Read by the
/// leak detector where there is one.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:vorbis_info_init\nleak:vorbis_encode_setup_init\n";
}
