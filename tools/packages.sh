# The Debian packages that the project needs: to build its programs, to build its tests, to measure
# the worker (benchmarks/run, benchmarks/plot), to check its style. Sourced by run-demo, run-tests,
# .ci/run and what tools/check-all runs; for the third:
#   . tools/packages.sh; tools/install-packages "${benchmark_packages[@]}"
build_packages=(cmake ninja-build g++ nlohmann-json3-dev libfmt-dev libcli11-dev zlib1g-dev
  libplist-dev libexpat1-dev libpcre2-dev libssl-dev)
test_packages=(libgtest-dev libgmock-dev libbenchmark-dev libvalijson-dev librapidcheck-dev groff-base python3 jq
  procps zsh fish chromium fonts-dejavu-core)
benchmark_packages=(python3 strace linux-perf gnuplot-nox)
style_packages=(git clang-format clang-tidy cppcheck shellcheck lintian)
# The second compiler, and the test library's sources for its runtime. The last is for the client in
# Objective-C.
clang_packages=(clang-16 libc++-16-dev libc++abi-16-dev libclang-rt-16-dev googletest
  libgnustep-base-dev)
# What the long checks need (tools/check-all), each beside the above.
memory_packages=(valgrind)
coverage_packages=(llvm-16 python3)
mutation_packages=(git bubblewrap lld python3)
thirty_two_bit_packages=(bubblewrap)
