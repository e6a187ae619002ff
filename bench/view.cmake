# SPDX-License-Identifier: GPL-3.0-or-later
add_executable(ek_bench_view ${CMAKE_CURRENT_LIST_DIR}/waveview_bench.cpp)
target_link_libraries(ek_bench_view PRIVATE ek_waveview_ui)
ek_use_qt(ek_bench_view)
