# The rows of `./run matrix`, which reads this. Each is the workload compiled and run
# in one way; what it printed is kept in build/matrix/results.

matrix_packages=('clang=the other compiler')
aarch64_packages=('g++-aarch64-linux-gnu=compiles for another processor' 'qemu-user=runs what is compiled for another processor')

# Sums, products, quotients, square roots: the same in every row.
matrix_exact=(values texts sizes boxes rays skins)
# Sines, tangents, arc cosines, too: the same in every row that has the same of these.
matrix_others=(turns views poses picks)

declare -A matrix_sums    # by "row column"
declare -A matrix_library # whose sines and so on a row has: "this" machine's, or others
declare -A matrix_short=([g++]=gcc [clang++]=clang)
matrix_rows=()            # those that ran
matrix_filter=.

# Whether a row is wanted.
matrix_wants()
{
    [[ $1 =~ $matrix_filter ]]
}

matrix_skip()
{
    printf '%-40s skipped: %s\n' "$1" "$2"
}

# matrix_build NAME [CMAKE-ARGUMENT...], once for all rows of that build.
matrix_build()
{
    local folder=build/matrix/$1 log=build/matrix/$1.log
    shift
    if ! { cmake --preset matrix -B "$folder" --log-level=WARNING "$@" &&
        cmake --build "$folder" --parallel "$(nproc)"; } >"$log" 2>&1; then
        grep -m 5 -E 'error|Error' "$log" >&2 || tail -n 5 "$log" >&2
        fail "the workload could not be built: see $log"
    fi
}

# matrix_build_plain COMPILER LEVEL
matrix_build_plain()
{
    matrix_build "${matrix_short[$1]}$2" "-DCMAKE_CXX_COMPILER=$1" "-DCMAKE_CXX_FLAGS_RELEASE=$2 -DNDEBUG"
}

# matrix_row ROW SINES COMMAND...
matrix_row()
{
    local row=$1 library=$2 results=build/matrix/results column sum
    shift 2
    local out="$results/${row//[ ,\/]/_}.txt"
    "$@" >"$out" || fail "row '$row' failed: $*"
    matrix_rows+=("$row")
    matrix_library[$row]=$library
    printf '%-40s' "$row"
    for column in "${matrix_exact[@]}" "${matrix_others[@]}"; do
        sum=$(awk -F '\t' -v column="$column" '$1 == column && $2 == "*" { print $3 }' "$out")
        [ -n "$sum" ] || fail "row '$row' has no column '$column'"
        matrix_sums["$row $column"]=$sum
        printf ' %s' "$sum"
    done
    echo
}

# One compiler at one level of optimisation: both kernel levels from the same objects.
matrix_plain()
{
    local compiler=$1 level=$2 bin=build/matrix/${matrix_short[$1]}$2/bin
    matrix_wants "$compiler $level, baseline" || matrix_wants "$compiler $level, AVX2" || return 0
    matrix_build_plain "$compiler" "$level"
    if matrix_wants "$compiler $level, baseline"; then
        matrix_row "$compiler $level, baseline" this "$bin/lumenta-matrix-baseline" baseline
    fi
    matrix_wants "$compiler $level, AVX2" || return 0
    if ! grep -qw avx2 /proc/cpuinfo; then
        matrix_skip "$compiler $level, AVX2" 'this processor has no AVX2'
        return 0
    fi
    matrix_row "$compiler $level, AVX2" this "$bin/lumenta-matrix" avx2
}

# All of the library compiled for a newer processor.
matrix_newer()
{
    local compiler=$1 march=$2
    local row="$compiler -O3 -march=$march" name=${matrix_short[$compiler]}-${march##*-}
    matrix_wants "$row" || return 0
    if ! /lib64/ld-linux-x86-64.so.2 --help 2>/dev/null | grep -q "^ *$march (supported"; then
        matrix_skip "$row" "this processor is no $march"
        return 0
    fi
    matrix_build "$name" "-DCMAKE_CXX_COMPILER=$compiler" "-DCMAKE_CXX_FLAGS=-march=$march" \
        '-DCMAKE_CXX_FLAGS_RELEASE=-O3 -DNDEBUG'
    matrix_row "$row" this "build/matrix/$name/bin/lumenta-matrix" avx2
}

# One build in other surroundings: another locale, other sines.
matrix_surroundings()
{
    local comma='g++ -O3, decimal comma' plain='g++ -O3, plain sines' slow='g++ -O3, C library without FMA'
    local program=build/matrix/gcc-O3/bin/lumenta-matrix locale=build/matrix/locale
    matrix_wants "$comma" || matrix_wants "$plain" || matrix_wants "$slow" || return 0
    matrix_build_plain g++ -O3
    if matrix_wants "$comma"; then
        mkdir -p "$locale"
        if localedef -c -i de_DE -f UTF-8 "$locale/de_DE.UTF-8" >"$locale.log" 2>&1; then
            matrix_row "$comma" this env "LOCPATH=$PWD/$locale" LC_ALL=de_DE.UTF-8 "$program" comma
        else
            matrix_skip "$comma" "no locale: $(tail -n 1 "$locale.log")"
        fi
    fi
    if matrix_wants "$plain"; then matrix_row "$plain" plain "$program-plain"; fi
    matrix_wants "$slow" || return 0
    if grep -qw fma /proc/cpuinfo; then
        matrix_row "$slow" 'the one without FMA' env GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2,-FMA,-FMA4 "$program"
    else
        matrix_skip "$slow" 'this processor has no FMA; all rows are like that'
    fi
}

# Qt for AArch64, out of the Debian packages that this machine's sources offer, into a
# folder of their own: neither apt nor dpkg of the machine learn of them.
aarch64_root()
{
    local here=$PWD/build/matrix/aarch64 package tool
    local root=$here/root
    [ ! -e "$root/complete" ] || return 0
    rm -rf -- "$here"
    mkdir -p "$here"/apt/{lists,archives}/partial "$root"
    cat >"$here/apt.conf" <<TEXT
APT::Architecture "arm64";
APT::Architectures { "arm64"; };
APT::Install-Recommends "false";
APT::Sandbox::User "root";
Acquire::Languages "none";
Dir::State "$here/apt";
Dir::State::status "$here/apt/status";
Dir::Cache "$here/apt";
Dir::Log "$here/apt";
TEXT
    # Drivers of displays, which nobody has here, are large: they count as installed.
    for package in libegl-mesa0 libgl1-mesa-dri libglx-mesa0; do
        printf 'Package: %s\nStatus: install ok installed\nArchitecture: arm64\nVersion: 9999\n' "$package"
        printf 'Provides: libegl-vendor, libglx-vendor\nMaintainer: none\nDescription: left out\n\n'
    done >"$here/apt/status"
    APT_CONFIG=$here/apt.conf apt-get update --quiet || true # what is missing then, shows below
    APT_CONFIG=$here/apt.conf apt-get install --download-only --yes --quiet \
        qtbase5-dev qtscript5-dev libstdc++6 || return 1
    for package in "$here"/apt/archives/*.deb; do
        dpkg-deb --extract "$package" "$root" || return 1
    done
    rm -rf -- "$here/apt"
    # Qt's build files ask for tools beside them. Those of this machine can run.
    for tool in moc rcc uic qmake; do
        ln -sf "$(readlink -f "/usr/lib/qt5/bin/$tool")" "$root/usr/lib/qt5/bin/$tool"
    done
    touch "$root/complete"
}

matrix_aarch64()
{
    local level row rows=() program root=$PWD/build/matrix/aarch64/root log=build/matrix/aarch64.log
    for level in -O0 -O3; do
        row="g++ $level, AArch64 emulated"
        if matrix_wants "$row" || matrix_wants "$row, plain sines"; then rows+=("$level"); fi
    done
    [ ${#rows[@]} -gt 0 ] || return 0
    local reason=""
    if ! install_missing "${aarch64_packages[@]}"; then
        reason="no ${aarch64_packages[0]%%=*}, or no ${aarch64_packages[1]%%=*}"
    elif ! aarch64_root >"$log" 2>&1; then
        reason="no Qt for it: $(grep -a -m 1 '^E: ' "$log" || tail -n 1 "$log") (see $log)"
    fi
    for level in "${rows[@]}"; do
        row="g++ $level, AArch64 emulated"
        if [ -n "$reason" ]; then
            matrix_skip "$row" "$reason"
            continue
        fi
        matrix_build "aarch64$level" --toolchain "$PWD/matrix/aarch64.cmake" "-DLUMENTA_AARCH64_ROOT=$root" \
            "-DCMAKE_CXX_FLAGS_RELEASE=$level -DNDEBUG"
        program=build/matrix/aarch64$level/bin/lumenta-matrix
        if matrix_wants "$row"; then
            matrix_row "$row" "AArch64's" qemu-aarch64 -L "$root" "$program"
        fi
        if matrix_wants "$row, plain sines"; then
            matrix_row "$row, plain sines" plain qemu-aarch64 -L "$root" "$program-plain"
        fi
    done
}

# Which functions two rows disagree about, in one column.
matrix_functions()
{
    local results=build/matrix/results
    awk -F '\t' -v column="$3" '$1 != column || $2 == "*" { next }
        NR == FNR { sums[$2] = $3; next }
        sums[$2] != $3 { printf "  %s: %s, not %s\n", $2, $3, sums[$2] }' \
        "$results/${1//[ ,\/]/_}.txt" "$results/${2//[ ,\/]/_}.txt"
}

# matrix_judge COLUMN [SINES]: whether all rows agree with the first of them, or all
# that have those sines.
matrix_judge()
{
    local column=$1 library=${2:-} row first="" failed=0
    for row in "${matrix_rows[@]}"; do
        [ -z "$library" ] || [ "${matrix_library[$row]}" = "$library" ] || continue
        if [ -z "$first" ]; then
            first=$row
        elif [ "${matrix_sums["$row $column"]}" != "${matrix_sums["$first $column"]}" ]; then
            echo "run: '$row' and '$first' disagree about $column:" >&2
            matrix_functions "$first" "$row" "$column" >&2
            failed=1
        fi
    done
    return "$failed"
}

# What rows with another C library make of the columns that go through it: told, not judged.
matrix_compare_libraries()
{
    local row column first="" same differing
    for row in "${matrix_rows[@]}"; do
        case ${matrix_library[$row]} in
            this) [ -n "$first" ] || first=$row ;;
        esac
    done
    [ -n "$first" ] || return 0
    for row in "${matrix_rows[@]}"; do
        case ${matrix_library[$row]} in
            this | plain) continue ;;
        esac
        same=() differing=()
        for column in "${matrix_others[@]}"; do
            if [ "${matrix_sums["$row $column"]}" = "${matrix_sums["$first $column"]}" ]; then
                same+=("$column")
            else
                differing+=("$column")
            fi
        done
        echo "$row: the same ${same[*]:-(none)}; other bits in ${differing[*]:-(none)}, by its C library."
    done
}

matrix_table()
{
    local compiler level march column failed=0
    mkdir -p build/matrix/results
    printf '%-40s' configuration
    printf ' %-8s' "${matrix_exact[@]}" "${matrix_others[@]}"
    echo
    for compiler in g++ clang++; do
        for level in -O0 -O2 -O3; do
            matrix_plain "$compiler" "$level"
        done
    done
    for march in x86-64-v3 x86-64-v4; do
        for compiler in g++ clang++; do
            matrix_newer "$compiler" "$march"
        done
    done
    matrix_surroundings
    matrix_aarch64
    [ ${#matrix_rows[@]} -gt 1 ] || fail "nothing to compare: ${#matrix_rows[@]} rows ran"

    echo
    for column in "${matrix_exact[@]}"; do
        matrix_judge "$column" || failed=1
    done
    for column in "${matrix_others[@]}"; do
        matrix_judge "$column" this || failed=1
        matrix_judge "$column" "AArch64's" || failed=1
        matrix_judge "$column" plain || failed=1
    done
    matrix_compare_libraries
    [ "$failed" -eq 0 ] || fail "rows disagree; what each function gave is in build/matrix/results"
    echo "${matrix_exact[*]}: the same in all ${#matrix_rows[@]} rows."
    echo "${matrix_others[*]}: the same in all rows with the same sines, tangents and arc cosines."
}
