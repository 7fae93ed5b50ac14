#!/bin/sh
# What a start runs on GNOME's desktop, one command a line, with nothing of the host around it.
command -v "${CORE##*/}" >/dev/null 2>&1
command -v "${CORE##*/}" >/dev/null 2>&1
nohup "$CORE" run -c "$CONFIG" -D "$FOLDER" >"$FOLDER/runtime.log" 2>&1 &
command -v gsettings >/dev/null 2>&1
gsettings set org.gnome.system.proxy mode 'manual'
gsettings set org.gnome.system.proxy.http host '127.0.0.1'
gsettings set org.gnome.system.proxy.http port "$PORT"
gsettings set org.gnome.system.proxy.http enabled true
gsettings set org.gnome.system.proxy.https host '127.0.0.1'
gsettings set org.gnome.system.proxy.https port "$PORT"
gsettings set org.gnome.system.proxy.socks host '127.0.0.1'
gsettings set org.gnome.system.proxy.socks port "$PORT"
gsettings set org.gnome.system.proxy ignore-hosts "['localhost', '127.0.0.1', '::1']"
