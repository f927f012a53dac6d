"""A display of its own, and when a program has drawn on it."""
import ctypes
import os
import subprocess
import time


class XImage(ctypes.Structure):
    """The head of Xlib's structure of this name."""
    _fields_ = [("width", ctypes.c_int), ("height", ctypes.c_int), ("xoffset", ctypes.c_int),
                ("format", ctypes.c_int), ("data", ctypes.c_void_p), ("byte_order", ctypes.c_int),
                ("bitmap_unit", ctypes.c_int), ("bitmap_bit_order", ctypes.c_int),
                ("bitmap_pad", ctypes.c_int), ("depth", ctypes.c_int), ("bytes_per_line", ctypes.c_int)]


class Screen:
    WIDTH, HEIGHT = 1280, 1024
    # Every window of the programs that are compared crosses one of these rows.
    ROWS = (20, HEIGHT // 2)

    def __enter__(self):
        number, number_in = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(number_in), "-noreset", "-nolisten", "tcp",
             "-screen", "0", f"{self.WIDTH}x{self.HEIGHT}x24"], pass_fds=[number_in], stderr=subprocess.DEVNULL)
        os.close(number_in)
        with os.fdopen(number) as pipe:
            os.environ["DISPLAY"] = ":" + pipe.readline().strip()
        self.x = ctypes.CDLL("libX11.so.6")
        self.x.XOpenDisplay.restype = ctypes.c_void_p
        self.x.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
        self.x.XDefaultRootWindow.restype = ctypes.c_ulong
        self.x.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint,
                                     ctypes.c_uint, ctypes.c_ulong, ctypes.c_int]
        self.x.XGetImage.restype = ctypes.POINTER(XImage)
        self.x.XDestroyImage.argtypes = [ctypes.POINTER(XImage)]
        self.display = self.x.XOpenDisplay(os.environ["DISPLAY"].encode())
        self.root = self.x.XDefaultRootWindow(self.display)
        return self

    def __exit__(self, *_):
        self.server.kill()
        self.server.wait()

    def pixels(self):
        rows = b""
        for row in self.ROWS:
            all_planes, z_pixmap = 2 ** 32 - 1, 2
            image = self.x.XGetImage(self.display, self.root, 0, row, self.WIDTH, 1, all_planes, z_pixmap)
            rows += ctypes.string_at(image.contents.data, image.contents.bytes_per_line)
            self.x.XDestroyImage(image)
        return rows

    def start(self, command):
        """Starts it; returns the process and the seconds until its first pixels are there."""
        empty = self.pixels()
        begin = time.perf_counter()
        process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        while self.pixels() == empty:
            if process.poll() is not None or time.perf_counter() > begin + 20:
                process.kill()
                raise SystemExit(f"{command[0]} shows nothing")
        return process, time.perf_counter() - begin

    def stop(self, process):
        """Returns the seconds of processor time that it has used."""
        process.kill()
        _, process.returncode, used = os.wait4(process.pid, 0)
        # The server takes its windows down a little later.
        while any(self.pixels()):
            time.sleep(0.005)
        return used.ru_utime + used.ru_stime
