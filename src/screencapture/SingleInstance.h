#pragma once

namespace framora {

class XConnection;

/// Marks this process as the one capture of the screen, for as long as the connection lives. False when
/// another one is open.
bool claimSingleInstance(const XConnection& connection);

} // namespace framora
