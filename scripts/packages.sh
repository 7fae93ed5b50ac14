# shellcheck shell=bash disable=SC2034  # the lists are read by the scripts that source this file
# Debian packages by purpose, and what each release names differently. Whoever needs a new one adds it to the group that fits.

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
  # The desktops' own tools, which write the settings; KDE's is added below.
  libxfconf-0-3 xfconf
  # To read the window, press its keys and close it.
  at-spi2-core python3-xlib xdotool
  # Readers of the proxy settings that come from elsewhere.
  gir1.2-glib-2.0 glib-networking libproxy-tools python3-gi systemd
)

check_packages=(clang clang-format clang-tidy cmark-gfm cppcheck flake8 python3 shellcheck)
bench_packages=(bubblewrap libbenchmark-dev time)

# The package, and what checks it; the unit is checked in the sandbox, the login with a real session there.
packaging_packages=(appstream bubblewrap desktop-file-utils dpkg-dev lintian systemd xfce4-session)
fuzz_packages=(bubblewrap clang)
fresh_packages=(debootstrap)

declare -A purpose_of_packages=(
  [build]="the build" [runtime]="the client" [headless]="the virtual display" [test]="the tests" [check]="static checks"
  [bench]="benchmarks" [packaging]="the Debian package" [fuzz]="the fuzzers" [fresh]="a fresh system"
)

# One field of /etc/os-release; nothing when there is none.
os_release() {
  # shellcheck source=/dev/null
  (. /etc/os-release 2>/dev/null && printf '%s' "${!1-}") || true
}

# Adds the names that differ. False when the release isn't one of those that are tested.
add_packages_of_release() {
  case "$(os_release ID) $(os_release VERSION_ID)" in
    "debian 12")
      test_packages+=(libkf5config-bin libproxy1-plugin-gsettings libproxy1-plugin-kconfig)
      fuzz_packages+=(libclang-rt-14-dev)
      ;;
    "debian 13")
      test_packages+=(libkf6config-bin)
      fuzz_packages+=(libclang-rt-19-dev)
      ;;
    *) return 1 ;;
  esac
}
