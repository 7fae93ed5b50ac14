# shellcheck shell=bash disable=SC2034  # the lists are read by the scripts that source this file
# Debian packages by purpose. Whoever needs a new one adds it to the group that fits.

build_packages=(
  # Compiler and build tools; make is for a plain `cmake -S . -B BUILD`.
  cmake g++ make ninja-build pkg-config
  # What the host, the layer and the sample core compile against.
  libdbus-1-dev libgtk-3-dev libproxy-dev libwayland-dev libx11-dev nlohmann-json3-dev
  # A plain build makes the tests as well.
  libgtest-dev
)

runtime_packages=(
  # Looks: Chinese glyphs, the icon theme, its SVG icons.
  adwaita-icon-theme fonts-noto-cjk librsvg2-common
  # Commands that the host calls: pkill and ps, gsettings, dbus-send, the menu and icon refresh.
  procps libglib2.0-bin gsettings-desktop-schemas dconf-gsettings-backend dconf-service
  dbus-bin desktop-file-utils gtk-update-icon-cache xdg-utils
)

headless_packages=(
  # A virtual display and a session bus; dbus also gives the machine its id.
  dbus dbus-daemon dbus-session-bus-common xvfb
)

test_packages=(
  # The sandbox, and the client and the server of the proxy tests.
  bubblewrap curl python3
  # The desktops' own tools, which the tests write settings with.
  libkf5config-bin libxfconf-0-3 xfconf
  # Readers of the proxy settings that come from elsewhere.
  libproxy-tools libproxy1-plugin-gsettings systemd
)

check_packages=(clang clang-format clang-tidy cppcheck shellcheck)
bench_packages=(bubblewrap libbenchmark-dev)

# The package, and what checks it; the unit is checked in the sandbox.
packaging_packages=(appstream bubblewrap desktop-file-utils dpkg-dev lintian systemd)
fuzz_packages=(bubblewrap clang libclang-rt-14-dev)
