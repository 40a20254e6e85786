#pragma once

namespace korvan::desktop {

// `korvan-desk [-d DIR] [--skipinstancecheck] [--screenshots DIR] [parameter...]`: starts
// the window in the order every long-running start takes (single instance, storage, main
// window, message loop). A second start hands its parameters to the running window, which
// opens the installation they name. With --screenshots the main views are written as PNG
// files into DIR instead of running. Exit code 0, 1 when the start failed, 2 for a wrong call.
int RunDesk(int argc, char** argv);

}  // namespace korvan::desktop
