# What each script needs of Debian 12.
build_packages=(g++ cmake ninja-build pkg-config libsystemd-dev nlohmann-json3-dev libfmt-dev libcli11-dev libncurses-dev)
run_packages=(dbus dbus-daemon)
test_packages=(clang-format-19 googletest python3 libglib2.0-bin systemd python3-dbusmock python3-jsonschema
  python3-prometheus-client python3-pyte procps dpkg-dev file man-db util-linux mandoc zsh fish libxml2-utils w3c-sgml-lib)
clang_packages=(clang-19 libc++-19-dev libc++abi-19-dev libclang-rt-19-dev) # of the presets libcxx, asan and tsan
bench_packages=(libbenchmark-dev libsensors-dev python3 systemd util-linux valgrind)
fuzz_packages=(clang-19 libclang-rt-19-dev)
check_packages=(clang-tidy-19 valgrind locales)
package_packages=(dpkg-dev file) # of cpack
package_test_packages=(git autopkgtest lintian mmdebstrap) # of scripts/test-package
fleet_packages=(prometheus prometheus-node-exporter) # unpacked, not installed
vm_packages=(qemu-system-x86 qemu-utils mmdebstrap e2fsprogs openssh-client python3)
vm_guest_packages=(bluez bluez-test-tools prometheus-node-exporter python3-dbus python3-gi) # in the virtual computer
