#!/usr/bin/env bash
# Proves that check_layers.sh and check_rules.sh find what they look for, by planting breaches in a small tree, and
# that they let pass what is allowed.
set -euo pipefail
tools=$(cd "$(dirname "$0")" && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failed=0
tried=0

# plant FILE TEXT: makes the tree hold that file alone.
plant() {
    rm -rf "${tree:?}"/*
    mkdir -p "$tree/$(dirname "$1")"
    printf '%b\n' "$2" >"$tree/$1"
}

# expect CHECK RESULT FILE TEXT: RESULT is the line of the breach, or "clean".
expect() {
    local check=$1 result=$2 file=$3 output status=0
    plant "$file" "$4"
    output=$("$tools/$check" "$tree") || status=$?
    tried=$((tried + 1))
    if [ "$result" = clean ]; then
        [ "$status" -eq 0 ] && [ -z "$output" ] && return
    else
        [ "$status" -ne 0 ] && [[ "$output" == "$file:$result: "* ]] && return
    fi
    printf '%s: expected %s of %s holding "%s", got status %s: %s\n' "$check" "$result" "$file" "$4" "$status" "$output"
    failed=1
}

layers() { expect check_layers.sh "$@"; }
rules() { expect check_rules.sh "$@"; }

# The libraries and the module.
layers clean rvlib/math/a.h '#include <vector>\n#include <cmath>\n#include "platform/system/files.h"\n#include "rvlib/b.h"'
layers clean rvdlm/m_rtr/a.cpp '#include "rvlib/b.h"\n#include "rvdlm/c.h"\n#include "platform/window/wnd.h"'
layers 1 rvlib/a.h '#include <QString>'
layers 2 rvlib/a.cpp '#include <string>\n#include <unistd.h>'
layers 1 rvlib/a.cpp '#include <spdlog/spdlog.h>'
layers 1 rvdlm/a.cpp '#include <nlohmann/json.hpp>'
layers 1 rvdlm/a.cpp '#include <sqlite3.h>'
layers 1 rvdlm/a.cpp '  #  include  <sys/time.h>'
layers 1 rvlib/a.cpp '#include "rvdlm/m_rtr/b.h"'
layers 1 rvlib/a.cpp '#include "platform/qt/eventloop.h"'
layers 1 rvdlm/a.cpp '#include "platform/qt/eventloop.h"'
layers 1 rvdlm/a.cpp '#include "console/b.h"'
layers 1 rvdlm/a.cpp '#include "simulator/b.h"'
layers 1 rvlib/a.cpp '#include "b.h"'
layers 1 rvlib/a.cpp '#include "../platform/qt/b.h"'
layers 1 rvlib/a.cpp '#include HEADER'
layers 1 rvdlm/a.h 'class QWidget;'
# What is made of runs.
layers clean archive/a.cpp '#include <vector>\n#include <nlohmann/json.hpp>\n#include "archive/a.h"\n#include "rvlib/math/matrix.h"'
layers clean archive/a.h '#include "platform/rvmdb/directsql.h"\n#include "contract/menus.h"'
layers clean console/a.cpp '#include "archive/a.h"'
layers 1 archive/a.h '#include <nlohmann/json.hpp>'
layers 1 archive/a.cpp '#include <QString>'
layers 1 archive/a.h 'class QString;'
layers 1 archive/a.cpp '#include "platform/window/wnd.h"'
layers 1 archive/a.cpp '#include "platform/qt/windowview.h"'
layers 1 archive/a.cpp '#include "rvlib/rvbas/array.h"'
layers 1 archive/a.cpp '#include "console/a.h"'
layers 1 archive/a.cpp '#include "simulator/a.h"'
layers 1 rvdlm/a.cpp '#include "archive/a.h"'
# What everybody agrees on.
layers clean rvdlm/a.h '#include "contract/menus.h"'
layers clean platform/a.h '#include "contract/menus.h"'
layers clean console/a.cpp '#include "contract/menus.h"'
layers clean simulator/a.cpp '#include "contract/menus.h"'
layers clean contract/a.h '#include <array>\n#include "contract/menus.h"'
layers 1 contract/a.h '#include "platform/window/types.h"'
layers 1 contract/a.h '#include <QString>'
layers 1 contract/a.h 'class QWidget;'
# The seam.
layers clean platform/rvlog/a.cpp '#include <spdlog/spdlog.h>\n#include <sys/stat.h>\n#include <queue>'
layers clean platform/qt/a.cpp '#include <QWidget>\n#include "platform/rvcom/b.h"\nQString Text;'
layers clean platform/qt/a.h '#include <QWidget>\nclass A : public QWidget {};'
layers clean platform/rvmdb/a.h '#include "rvlib/math/matrix.h"\n#include "rvlib/rvbas/array.h"'
layers 1 platform/window/a.h '#include <QWidget>'
layers 1 platform/window/a.h 'class QWidget;'
layers 2 platform/window/a.h 'struct A;\nvoid Use(Qt::Alignment);'
layers 1 platform/rvcom/a.h '#include <sys/socket.h>'
layers 1 platform/rvlog/a.h '#include <spdlog/spdlog.h>'
layers 1 platform/window/a.h '#include "platform/qt/b.h"'
layers 1 platform/window/a.cpp '#include <QWidget>'
layers 1 platform/system/a.cpp '#include <QtCore/QString>'
layers 1 platform/rvmdb/a.cpp '#include <qsqldatabase.h>'
layers 2 platform/window/a.cpp '#include <string>\nQString Text;'
layers 1 platform/rvmdb/a.cpp '#include "rvlib/settings/path.h"'
layers 1 platform/window/a.cpp '#include "rvdlm/b.h"'
layers 1 platform/window/a.cpp '#include "console/b.h"'
# The folders of the seam, in their order.
layers clean platform/rvopc/a.cpp '#include "platform/system/b.h"\n#include "platform/rvlog/b.h"\n#include "platform/rvopc/c.h"'
layers clean platform/rvcom/a.h '#include "platform/window/b.h"'
layers 1 platform/window/a.cpp '#include "platform/rvcom/b.h"'
layers 1 platform/window/a.cpp '#include "platform/qt/b.h"'
layers 1 platform/system/a.h '#include "platform/window/b.h"'
layers 2 platform/rvlog/a.cpp '#include "platform/window/b.h"\n#include "platform/rvopc/b.h"'
layers 1 platform/elsewhere/a.cpp '#include "platform/system/b.h"'
layers 1 platform/qt/a.cpp '#include "platform/elsewhere/b.h"'
# Above.
layers clean console/a.cpp '#include <QWidget>\n#include "platform/window/wnd.h"\n#include "simulator/b.h"'
layers 1 console/a.cpp '#include "rvdlm/m_rtr/b.h"'
layers 1 simulator/a.cpp '#include "rvdlm/m_rtr/b.h"'
layers 1 simulator/a.cpp '#include "rvlib/math/matrix.h"'
# Comments and texts don't count.
layers clean rvlib/a.cpp '// #include <QString> as a QString\n/* QString\n#include <QString>\n*/ const char* p = "QString // no";'
layers 3 rvlib/a.cpp '/* two\nlines */ const char* p = "/*";\n#include <QString>'

rules clean rvlib/a.cpp 'auto t = IFEventLoop::Current().Now(); Loop.Sleep(100); // sleep_for\nGetTime(); m_Time(3); p->time(); std::localtime(&t);'
rules 1 rvlib/a.cpp 'auto t = std::chrono::steady_clock::now();'
rules 1 rvdlm/a.cpp 'auto t = system_clock :: now();'
rules 2 rvdlm/a.h 'int i;\nstd::this_thread::sleep_for(1ms);'
rules 1 rvlib/a.cpp 'usleep(5);'
rules 1 rvlib/a.cpp 'std::time(nullptr);'
rules 1 rvlib/a.cpp 'x = time( 0);'
rules 1 rvlib/a.cpp '::clock();'
rules 1 rvlib/a.cpp 'gettimeofday(&tv, nullptr);'
rules clean console/a.cpp 'std::time(nullptr);'

[ "$failed" -eq 0 ] && printf 'the checks of layers and rules find all %s cases\n' "$tried"
exit "$failed"
