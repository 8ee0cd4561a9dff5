/// \file
/// The numbers of the messages that the library hands to the dispatcher (BDispatcher), and the
/// two it posts to an operation's window. A message is its number and two 64-bit parameters;
/// the comment of each says who sends it, by which route, and what the parameters carry. A
/// pointer parameter of a sent message is valid only while Send runs.
#pragma once

/// @name Tree changes, sent by BNode when the root of its tree dispatches messages. The first
/// parameter is the node's address and the second 0, except where said.
///@{
constexpr unsigned int MSG_NODE_CHILD_ADDED = 0x0C03;   ///< 3075: the child, its position
constexpr unsigned int MSG_NODE_CHILD_REMOVED = 0x0C04; ///< 3076: the child, 0
constexpr unsigned int MSG_NODE_TEXT_CHANGED = 0x0C05;  ///< 3077
/// 3079; when an annotation is removed: the node, the annotation's former address.
constexpr unsigned int MSG_NODE_DECOR_CHANGED = 0x0C07;
constexpr unsigned int MSG_NODE_TREATED = 0x0C08;        ///< 3080
constexpr unsigned int MSG_NODE_OBJECT_CHANGED = 0x0C09; ///< 3081
constexpr unsigned int MSG_NODE_ACTIVE_CHANGED = 0x0C0A; ///< 3082
constexpr unsigned int MSG_NODE_LOCK_CHANGED = 0x0C10;   ///< 3088
///@}

/// Posted by BUnitSystem::ChangeUnit: the unit class, 0.
constexpr unsigned int MSG_UNIT_CHANGED = 0x0C29; // 3113
/// Posted by CStdMemoryManager when the memory in use changed: 0, 0.
constexpr unsigned int MSG_MEMORY_CHANGED = 0x0C54; // 3156

/// Sent by BSyncOperationInterface: the percent, 0.
constexpr unsigned int MSG_SYNC_PROGRESS = 0x0FEB; // 4075
/// Sent by BProgressMapping: the progress units added since its last message, 0.
constexpr unsigned int MSG_PROGRESS_STEP = 0x0FED; // 4077
/// Sent by BSyncOperationInterface: a pointer to the wide text, valid while Send runs; 0.
constexpr unsigned int MSG_SYNC_STATUS = 0x0FEE; // 4078

/// @name From BAsyncOperationInterface: sent on the dispatcher thread, posted on any other.
/// The first parameter is the operation; the second the status id, the percent, or 0 for an
/// error.
///@{
constexpr unsigned int MSG_ASYNC_STATUS = 0x2003;   // 8195
constexpr unsigned int MSG_ASYNC_PROGRESS = 0x2004; // 8196
constexpr unsigned int MSG_ASYNC_ERROR = 0x2005;    // 8197
///@}

/// @name Not for the dispatcher: posted to the window that an asynchronous operation reports
/// to. The status id, 0; the percent (at most 99), 0.
///@{
constexpr unsigned int MSG_SINK_STATUS = 0x1E01;   // 7681
constexpr unsigned int MSG_SINK_PROGRESS = 0x1E02; // 7682
///@}
