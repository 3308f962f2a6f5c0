# The program's folders: the Windows CE API, the windowing framework and each other, nothing else.
# Reports run from the link to the wizard and commands from the wizard to the link, so the folders
# name each other; static libraries allow that.
tolvane_folder(app/log DEPENDS platform_api)
tolvane_folder(app/thread DEPENDS platform_api)
tolvane_folder(MStar_C4 DEPENDS app_log platform_api)
tolvane_folder(power DEPENDS app_log app_thread platform_api)
tolvane_folder(dvrlink DEPENDS app_log app_thread platform_api platform_framework wizard ui power)
tolvane_folder(ui DEPENDS res app_log platform_api platform_framework wizard power)
tolvane_folder(wizard DEPENDS res app_log platform_api platform_framework dvrlink ui power MStar_C4)
tolvane_folder(app DEPENDS res app_log platform_api platform_framework wizard ui power)

# The program as a whole, on this platform: the folders see the API's headers alone, and only the
# linker sees what stands behind them.
foreach(folder app app_thread wizard dvrlink power ui MStar_C4)
    foreach(part kernel window gdi device resource powermgr)
        target_link_libraries(${folder} INTERFACE $<LINK_ONLY:platform_${part}>)
    endforeach()
endforeach()

# The module that the windows belong to is defined with the program's entry.
target_link_libraries(wizard INTERFACE $<LINK_ONLY:app>)

# Not optimised, or a line's count would tell of its neighbours; threads count together.
if(TOLVANE_COVERAGE)
    foreach(folder app app_thread wizard dvrlink power ui MStar_C4)
        target_compile_options(${folder} PRIVATE --coverage -fprofile-update=atomic -O0)
        target_link_options(${folder} INTERFACE --coverage)
        # Headers that were precompiled optimised are not theirs to read.
        set_target_properties(${folder} PROPERTIES DISABLE_PRECOMPILE_HEADERS ON)
    endforeach()
endif()
