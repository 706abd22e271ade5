#!/usr/bin/python3
"""vte_window.py LINES WORD..: a bare window of the VTE widget that runs WORD.., with LINES of history."""

import sys

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("Vte", "2.91")
from gi.repository import GLib, Gtk, Pango, Vte  # noqa: E402

terminal = Vte.Terminal()
terminal.set_size(80, 24)
terminal.set_font(Pango.FontDescription("DejaVu Sans Mono 10"))
terminal.set_scrollback_lines(int(sys.argv[1]))
window = Gtk.Window()
window.add(terminal)
terminal.connect("child-exited", lambda *_: Gtk.main_quit())
terminal.spawn_async(Vte.PtyFlags.DEFAULT, None, sys.argv[2:], None, GLib.SpawnFlags.DEFAULT, None, None, -1, None, None)
window.show_all()
Gtk.main()
