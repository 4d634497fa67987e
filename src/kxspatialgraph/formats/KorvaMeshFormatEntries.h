#pragma once

class KxData;

// The package's entries for KorvaMesh files in the host's format registry
// (resources/kxspatialgraph/kxspatialgraph.rc). The reader dispatches by
// content: a "KxSpatialGraph" content type or the current or legacy graph
// layout goes to the graph reader, the skeleton layout to the skeleton import.
extern "C" {
// 1 after adding the graph read from filename to the object pool, else 0 after an "Error: " line.
int kxspatialgraphReadKorvaMesh(const char* filename);
// Non-zero when header starts like a KorvaMesh file.
int kxspatialgraphCheckKorvaMesh(const char* header, int length);
// Write a KxSpatialGraph in the binary (compressed: zlib) or ASCII encoding; 1 on success.
int kxspatialgraphWriteKorvaMesh(KxData* data, const char* filename);
int kxspatialgraphWriteKorvaMeshCompressed(KxData* data, const char* filename);
int kxspatialgraphWriteKorvaMeshASCII(KxData* data, const char* filename);
}
