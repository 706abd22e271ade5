# The one table of who may name whom. A row is: target, then all that it may depend on.
# house_library refuses what does not stand here, so the layering is a fact of the build.
# An arrow goes down, never up, and never sideways between two components.

set(HOUSE_LAYERS)
macro(house_layer target)
    list(APPEND HOUSE_LAYERS ${target})
    set(HOUSE_MAY_USE_${target} ${ARGN})
endmacro()

set(_qt_core Qt6::Core)
set(_qt_ui Qt6::Core Qt6::Gui Qt6::Widgets)

# --- below everything
house_layer(dispatch ${_qt_core})
house_layer(ports dispatch ${_qt_core})
house_layer(platform dispatch ports ${_qt_core}) # raises Failure, gives the event loop's Clock
house_layer(printing ports dispatch platform ${_qt_core} Qt6::Gui Qt6::PrintSupport)
house_layer(secrets ports ${_qt_core})
house_layer(desktop ${_qt_core} Qt6::Gui Qt6::DBus)
house_layer(media ports dispatch ${_qt_core} Qt6::Gui)
house_layer(support_core ports dispatch platform ${_qt_core})
house_layer(support_ui support_core ports dispatch platform ${_qt_ui})

# --- components: products of their own; they know ports, never the shell, never each other
house_layer(emulator_engine)
house_layer(emulator_personalities emulator_engine)
house_layer(emulator_control emulator_engine emulator_personalities ports dispatch ${_qt_core})
house_layer(emulator_view emulator_control emulator_engine ports dispatch ${_qt_ui})
house_layer(comm_core)
house_layer(comm_rebind)
house_layer(comm comm_core comm_rebind ports dispatch platform ${_qt_core} Qt6::Network)
house_layer(textfile platform dispatch ${_qt_core})
house_layer(menubar_core ports dispatch ${_qt_core})
house_layer(menubar_ui menubar_core ports dispatch ${_qt_ui})

# --- the help pages and their window
house_layer(help_core ${_qt_core})
house_layer(help_ui help_core ${_qt_ui})

# --- the shell
house_layer(connect_ui ports ${_qt_ui})
set(_below ports dispatch platform support_core textfile ${_qt_core})
house_layer(settings ${_below})
house_layer(sessions_core settings emulator_control menubar_core ${_below})
house_layer(sessions_ui sessions_core settings emulator_control emulator_view menubar_core menubar_ui support_ui ${_below} ${_qt_ui})
house_layer(menus_core sessions_core settings emulator_control menubar_core ${_below})
house_layer(automation menus_core sessions_core settings emulator_control menubar_core ${_below})
house_layer(app_core automation menus_core sessions_core settings emulator_control menubar_core ${_below})
house_layer(app_ui app_core automation menus_core sessions_core sessions_ui settings emulator_control emulator_view
    menubar_core menubar_ui support_ui ${_below} ${_qt_ui})

# --- a program of its own, for hosts
house_layer(rebind_host comm_rebind)
