// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What is called in each library, for XcbLibraries.

#define TONALIGN_XCB(X)                                                                                      \
    X(xcb_connect)                                                                                           \
    X(xcb_disconnect)                                                                                        \
    X(xcb_connection_has_error)                                                                              \
    X(xcb_get_file_descriptor)                                                                               \
    X(xcb_get_setup)                                                                                         \
    X(xcb_setup_roots_iterator)                                                                              \
    X(xcb_screen_next)                                                                                       \
    X(xcb_screen_allowed_depths_iterator)                                                                    \
    X(xcb_depth_next)                                                                                        \
    X(xcb_depth_visuals)                                                                                     \
    X(xcb_depth_visuals_length)                                                                              \
    X(xcb_setup_pixmap_formats)                                                                              \
    X(xcb_setup_pixmap_formats_length)                                                                       \
    X(xcb_generate_id)                                                                                       \
    X(xcb_flush)                                                                                             \
    X(xcb_total_written)                                                                                     \
    X(xcb_poll_for_event)                                                                                    \
    X(xcb_poll_for_queued_event)                                                                             \
    X(xcb_request_check)                                                                                     \
    X(xcb_get_maximum_request_length)                                                                        \
    X(xcb_get_extension_data)                                                                                \
    X(xcb_intern_atom)                                                                                       \
    X(xcb_intern_atom_reply)                                                                                 \
    X(xcb_create_window)                                                                                     \
    X(xcb_destroy_window)                                                                                    \
    X(xcb_map_window)                                                                                        \
    X(xcb_unmap_window)                                                                                      \
    X(xcb_configure_window)                                                                                  \
    X(xcb_change_window_attributes)                                                                          \
    X(xcb_reparent_window)                                                                                   \
    X(xcb_change_property)                                                                                   \
    X(xcb_delete_property)                                                                                   \
    X(xcb_get_property)                                                                                      \
    X(xcb_get_property_reply)                                                                                \
    X(xcb_get_property_value)                                                                                \
    X(xcb_get_property_value_length)                                                                         \
    X(xcb_get_geometry)                                                                                      \
    X(xcb_get_geometry_reply)                                                                                \
    X(xcb_translate_coordinates)                                                                             \
    X(xcb_translate_coordinates_reply)                                                                       \
    X(xcb_query_tree)                                                                                        \
    X(xcb_query_tree_reply)                                                                                  \
    X(xcb_query_pointer)                                                                                     \
    X(xcb_query_pointer_reply)                                                                               \
    X(xcb_warp_pointer)                                                                                      \
    X(xcb_grab_pointer)                                                                                      \
    X(xcb_grab_pointer_reply)                                                                                \
    X(xcb_ungrab_pointer)                                                                                    \
    X(xcb_set_input_focus)                                                                                   \
    X(xcb_get_input_focus)                                                                                   \
    X(xcb_get_input_focus_reply)                                                                             \
    X(xcb_send_event)                                                                                        \
    X(xcb_set_selection_owner)                                                                               \
    X(xcb_get_selection_owner)                                                                               \
    X(xcb_get_selection_owner_reply)                                                                         \
    X(xcb_convert_selection)                                                                                 \
    X(xcb_create_gc)                                                                                         \
    X(xcb_free_gc)                                                                                           \
    X(xcb_put_image)                                                                                         \
    X(xcb_create_pixmap)                                                                                     \
    X(xcb_free_pixmap)                                                                                       \
    X(xcb_create_cursor)                                                                                     \
    X(xcb_free_cursor)                                                                                       \
    X(xcb_create_colormap)                                                                                   \
    X(xcb_free_colormap)

#define TONALIGN_XCB_SHM(X)                                                                                  \
    X(xcb_shm_query_version)                                                                                 \
    X(xcb_shm_query_version_reply)                                                                           \
    X(xcb_shm_attach_fd_checked)                                                                             \
    X(xcb_shm_detach)                                                                                        \
    X(xcb_shm_put_image)

#define TONALIGN_XCB_RANDR(X)                                                                                \
    X(xcb_randr_query_version)                                                                               \
    X(xcb_randr_query_version_reply)                                                                         \
    X(xcb_randr_get_monitors)                                                                                \
    X(xcb_randr_get_monitors_reply)                                                                          \
    X(xcb_randr_get_monitors_monitors_iterator)                                                              \
    X(xcb_randr_monitor_info_next)

#define TONALIGN_XCB_XKB(X)                                                                                  \
    X(xcb_xkb_select_events)                                                                                 \
    X(xcb_xkb_per_client_flags)                                                                              \
    X(xcb_xkb_per_client_flags_reply)

#define TONALIGN_XKBCOMMON(X)                                                                                \
    X(xkb_context_new)                                                                                       \
    X(xkb_context_unref)                                                                                     \
    X(xkb_keymap_new_from_names)                                                                             \
    X(xkb_keymap_unref)                                                                                      \
    X(xkb_keymap_num_layouts_for_key)                                                                        \
    X(xkb_keymap_key_get_syms_by_level)                                                                      \
    X(xkb_state_new)                                                                                         \
    X(xkb_state_unref)                                                                                       \
    X(xkb_state_update_mask)                                                                                 \
    X(xkb_state_key_get_one_sym)                                                                             \
    X(xkb_state_key_get_layout)                                                                              \
    X(xkb_state_mod_name_is_active)                                                                          \
    X(xkb_state_mod_index_is_consumed2)                                                                      \
    X(xkb_keymap_mod_get_index)                                                                              \
    X(xkb_keysym_to_utf32)                                                                                   \
    X(xkb_compose_table_new_from_locale)                                                                     \
    X(xkb_compose_table_unref)                                                                               \
    X(xkb_compose_state_new)                                                                                 \
    X(xkb_compose_state_unref)                                                                               \
    X(xkb_compose_state_feed)                                                                                \
    X(xkb_compose_state_reset)                                                                               \
    X(xkb_compose_state_get_status)                                                                          \
    X(xkb_compose_state_get_utf8)

#define TONALIGN_XKBCOMMON_X11(X)                                                                            \
    X(xkb_x11_setup_xkb_extension)                                                                           \
    X(xkb_x11_get_core_keyboard_device_id)                                                                   \
    X(xkb_x11_keymap_new_from_device)                                                                        \
    X(xkb_x11_state_new_from_device)

#define TONALIGN_XCB_CURSOR(X)                                                                               \
    X(xcb_cursor_context_new)                                                                                \
    X(xcb_cursor_context_free)                                                                               \
    X(xcb_cursor_load_cursor)

#define TONALIGN_XCB_RENDER(X)                                                                               \
    X(xcb_render_query_pict_formats)                                                                         \
    X(xcb_render_query_pict_formats_reply)                                                                   \
    X(xcb_render_query_pict_formats_formats_iterator)                                                        \
    X(xcb_render_pictforminfo_next)                                                                          \
    X(xcb_render_create_picture)                                                                             \
    X(xcb_render_free_picture)                                                                               \
    X(xcb_render_create_cursor)
