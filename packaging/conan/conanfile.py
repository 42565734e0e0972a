"""Builds the sources that it lies in: conan create packaging/conan"""
import os
import re

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rmdir


class Pelkraft(ConanFile):
    name = "pelkraft"
    description = "Row conversion and dot-pattern simulation for print engines"
    license = "Apache-2.0"
    topics = ("printing", "halftone", "image-rows", "simd")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False], "fPIC": [True, False]}
    default_options = {"shared": True, "fPIC": True}
    implements = ["auto_shared_fpic"]

    @property
    def _project(self):
        return os.path.join(self.recipe_folder, "..", "..")

    def set_version(self):
        text = load(self, os.path.join(self._project, "CMakeLists.txt"))
        self.version = re.search(r"project\(pelkraft VERSION ([0-9.]+)", text).group(1)

    def export_sources(self):
        for pattern in ("*CMakeLists.txt", "*.cpp", "*.h", "*.cmake", "*.map", "*.pc.in",
                        "cmake/rooms.txt", "LICENSE", "NOTICE"):
            copy(self, pattern, self._project, self.export_sources_folder,
                 excludes=("build/*", "tests/*", "benchmarks/*", "fuzz/*", "tools/*"))

    def layout(self):
        self.folders.root = os.path.join("..", "..")
        cmake_layout(self)

    def requirements(self):
        # The compiler's own headers have the shuffle of bytes on these.
        if self.settings.arch not in ("x86", "x86_64", "wasm", "wasm64"):
            self.requires("simde/0.8.2", visible=False)

    def generate(self):
        CMakeToolchain(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        for text in ("LICENSE", "NOTICE"):
            copy(self, text, self.source_folder, os.path.join(self.package_folder, "licenses"))
        # Conan writes what finds the package itself.
        for folder in (os.path.join("lib", "cmake"), os.path.join("lib", "pkgconfig"), "share"):
            rmdir(self, os.path.join(self.package_folder, folder))

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "pelkraft")

        tools = self.cpp_info.components["system_tools"]
        tools.libs = ["zvk_system_tools"]
        tools.set_property("cmake_target_name", "zvk::system_tools")

        library = self.cpp_info.components["pelkraft"]
        library.libs = ["pelkraft"]
        library.requires = ["system_tools"]
        library.set_property("cmake_target_name", "pelkraft::pelkraft")
        library.set_property("pkg_config_name", "pelkraft")

        if not self.options.shared:
            library.defines = ["PELKRAFT_STATIC"]
