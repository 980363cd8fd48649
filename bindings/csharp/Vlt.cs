// SPDX-License-Identifier: MIT
// The library for C#: packages whose stored files are streams, and databases with their tables. It needs
// generated/VltNative.cs, which holds the functions of the library as they are.
using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;
using System.Threading;
using VltNative;

namespace Vlt
{
    /// <summary>A call of the library failed; Code is what the library stored, 0 where it tells nothing.</summary>
    public sealed class VltException : IOException
    {
        public int Code { get; private set; }

        public VltException(string text, int code = 0) : base(text) { Code = code; }

        static string Text(string[] texts, int code)
        {
            return code > 0 && code < texts.Length ? texts[code] : "failed";
        }

        static readonly string[] Opening =
        {
            "", "not a package", "neither credential matches", "the host file cannot be opened",
            "open exclusively elsewhere, or the host file may not be written", "no path, or a negative offset"
        };

        static readonly string[] File =
        {
            "", "too many open files, or the file could not be emptied", "the package is closed",
            "the package is read-only, or the file is open elsewhere", "there is no such file, or it cannot be made"
        };

        static readonly string[] Database =
        {
            "the package cannot be opened", "no memory", "a file cannot be opened, read or written",
            "the schema sets no separator", "a field that a table must have is missing",
            "there is no such field to index", "a record cannot be given its NID, or cannot hold a value",
            "the schema cannot be composed", "the schema does not declare a table that must exist"
        };

        internal static VltException OfOpening(int code, string path)
        {
            return new VltException(path + ": " + Text(Opening, code), code);
        }

        internal static VltException OfFile(uint code, string name)
        {
            return new VltException(name + ": " + Text(File, (int)code), (int)code);
        }

        internal static VltException OfDatabase(int code, string detail)
        {
            string text = code == 0 ? Database[0] : Text(Database, code);
            return new VltException(detail == "" ? text : text + ": " + detail, code);
        }
    }

    /// <summary>
    /// Packages must not be opened or closed while another call is in progress, and the garbage collector may close one
    /// at any moment: calls on files share this lock, those on packages hold it alone.
    /// </summary>
    static class Calls
    {
        static readonly ReaderWriterLockSlim gate = new ReaderWriterLockSlim();

        public struct Shared : IDisposable
        {
            public static Shared Enter() { gate.EnterReadLock(); return new Shared(); }
            public void Dispose() { gate.ExitReadLock(); }
        }

        public struct Alone : IDisposable
        {
            public static Alone Enter() { gate.EnterWriteLock(); return new Alone(); }
            public void Dispose() { gate.ExitWriteLock(); }
        }

        /// <summary>A zero-terminated text of the library in the system's multibyte character set.</summary>
        public static string Text(byte[] text)
        {
            GCHandle pinned = GCHandle.Alloc(text, GCHandleType.Pinned);
            try { return Marshal.PtrToStringAnsi(pinned.AddrOfPinnedObject()); }
            finally { pinned.Free(); }
        }
    }

    /// <summary>Owns a package handle.</summary>
    public sealed class PackageHandle : SafeHandle
    {
        internal PackageHandle(int handle) : base(IntPtr.Zero, true) { SetHandle(new IntPtr(handle)); }

        public override bool IsInvalid { get { return handle == IntPtr.Zero; } }

        /// <summary>The number that the functions of the library take.</summary>
        public int Value
        {
            get
            {
                if (IsClosed) throw new ObjectDisposedException("Package");
                return handle.ToInt32();
            }
        }

        protected override bool ReleaseHandle()
        {
            using (Calls.Alone.Enter()) return Api.vlt_package_close(handle.ToInt32()) == 1;
        }
    }

    /// <summary>Owns a file handle, and keeps its package open.</summary>
    public sealed class StoredFileHandle : SafeHandle
    {
        readonly PackageHandle package;

        internal StoredFileHandle(PackageHandle package, int handle) : base(IntPtr.Zero, true)
        {
            bool added = false;
            package.DangerousAddRef(ref added);
            this.package = package;
            SetHandle(new IntPtr(handle));
        }

        public override bool IsInvalid { get { return handle == IntPtr.Zero; } }

        public uint Value
        {
            get
            {
                if (IsClosed) throw new ObjectDisposedException("StoredFile");
                return unchecked((uint)handle.ToInt64());
            }
        }

        protected override bool ReleaseHandle()
        {
            bool closed;
            using (Calls.Shared.Enter()) closed = Api.vlt_file_close(unchecked((uint)handle.ToInt64())) == 1;
            package.DangerousRelease();
            return closed;
        }
    }

    /// <summary>One line of a package's directory; times are as the library has them (see vlt.h).</summary>
    public struct Entry
    {
        public string Name;
        public bool IsFile;
        public long Size;
        public double Created, Accessed, Written;
    }

    /// <summary>An open package. A stream that is still open when it is disposed keeps the host file open.</summary>
    public sealed class Package : IDisposable
    {
        readonly PackageHandle handle;

        /// <summary>Whether names are UTF-16; otherwise they are in the system's multibyte character set.</summary>
        public bool WideNames { get; private set; }

        public PackageHandle Handle { get { return handle; } }

        /// <summary>Opens a package, to read only or to write as far as the credentials allow.</summary>
        public Package(string path, bool readOnly = false, string readCredential = "", string writeCredential = "",
            bool exclusive = false, long offset = 0)
        {
            int wide, error, only = readOnly ? 1 : 0;
            using (Calls.Alone.Enter())
                handle = new PackageHandle(Api.vlt_package_open_ex(path, only, unchecked((uint)offset),
                    (int)(offset >> 32), only, exclusive ? 1 : 0, readCredential, writeCredential, out wide,
                    out error));
            if (handle.IsInvalid) throw VltException.OfOpening(error, path);
            WideNames = wide != 0;
        }

        /// <summary>Makes a package, over a file that is there, and opens it.</summary>
        public static Package Create(string path, bool wideNames = false, int sizeMb = 0, string readCredential = "",
            string writeCredential = "")
        {
            using (Calls.Alone.Enter())
                if (Api.vlt_package_create(path, wideNames ? 1 : 0, sizeMb, readCredential, writeCredential) == 0)
                    throw new VltException(path + ": the package cannot be made");
            return new Package(path, false, readCredential, writeCredential);
        }

        public void Dispose() { handle.Dispose(); }

        /// <summary>Opens a stored file: Open and OpenOrCreate, Create (emptied), CreateNew, Append.</summary>
        public StoredFile OpenFile(string name, FileMode mode, FileAccess access = FileAccess.ReadWrite,
            bool exclusive = false)
        {
            bool exists = Contains(name);
            if (mode == FileMode.Open && !exists) throw VltException.OfFile(Api.VLT_FILE_NOT_FOUND, name);
            if (mode == FileMode.CreateNew && exists) throw new VltException(name + ": is stored already");
            int kind = mode == FileMode.Append ? Api.VLT_MODE_APPEND
                : mode == FileMode.Open && access == FileAccess.Read ? Api.VLT_MODE_READ : Api.VLT_MODE_WRITE;
            int truncate = mode == FileMode.Create || mode == FileMode.Truncate ? 1 : 0, share = exclusive ? 1 : 0;
            uint error;
            int file;
            using (Calls.Shared.Enter())
                file = WideNames ? Api.vltw_file_open(handle.Value, name, (uint)kind, share, truncate, out error)
                    : Api.vlt_file_open(handle.Value, name, (uint)kind, share, truncate, out error);
            if (file == 0) throw VltException.OfFile(error, name);
            return new StoredFile(new StoredFileHandle(handle, file), name, access, mode == FileMode.Append);
        }

        public bool Contains(string name)
        {
            uint kind;
            long size;
            double created, accessed, written;
            using (Calls.Shared.Enter())
                return 1 == (WideNames
                    ? Api.vltw_file_get_info(handle.Value, name, out kind, out size, out created, out accessed,
                        out written)
                    : Api.vlt_file_get_info(handle.Value, name, out kind, out size, out created, out accessed,
                        out written));
        }

        public void Delete(string name)
        {
            int deleted;
            using (Calls.Shared.Enter())
                deleted = WideNames ? Api.vltw_file_delete(handle.Value, name)
                    : Api.vlt_file_delete(handle.Value, name);
            if (deleted == 0) throw new VltException(name + ": there is no such file, or it is open");
        }

        /// <summary>The directory, in its order.</summary>
        public List<Entry> Entries()
        {
            var entries = new List<Entry>();
            var narrow = new byte[Api.VLT_NAME_MAX + 1];
            var wide = new char[Api.VLT_NAME_MAX + 1];
            using (Calls.Shared.Enter())
                for (int at = 0; ;)
                {
                    Entry entry;
                    uint kind;
                    at = WideNames
                        ? Api.vltw_package_enum(handle.Value, at, wide, out kind, out entry.Size, out entry.Created,
                            out entry.Accessed, out entry.Written)
                        : Api.vlt_package_enum(handle.Value, at, narrow, out kind, out entry.Size, out entry.Created,
                            out entry.Accessed, out entry.Written);
                    if (at == 0) return entries;
                    entry.Name = WideNames ? new string(wide, 0, Array.IndexOf(wide, '\0')) : Calls.Text(narrow);
                    entry.IsFile = kind == Api.VLT_ENTRY_FILE;
                    entries.Add(entry);
                }
        }
    }

    /// <summary>A stored file as a stream. What is written is in the host file when Write returns.</summary>
    public sealed class StoredFile : Stream
    {
        readonly StoredFileHandle handle;
        readonly FileAccess access;
        readonly bool appends;

        public string Name { get; private set; }

        internal StoredFile(StoredFileHandle handle, string name, FileAccess access, bool appends)
        {
            this.handle = handle;
            this.access = access;
            this.appends = appends;
            Name = name;
        }

        public override bool CanRead { get { return !handle.IsClosed && (access & FileAccess.Read) != 0; } }
        public override bool CanWrite { get { return !handle.IsClosed && (access & FileAccess.Write) != 0; } }
        public override bool CanSeek { get { return !handle.IsClosed; } }

        public override long Position
        {
            get { return Seek(0, SeekOrigin.Current); }
            set { Seek(value, SeekOrigin.Begin); }
        }

        public override long Length
        {
            get
            {
                long here = Position, end = Seek(0, SeekOrigin.End);
                Seek(here, SeekOrigin.Begin);
                return end;
            }
        }

        static void CheckRange(byte[] buffer, int offset, int count)
        {
            if (buffer == null) throw new ArgumentNullException("buffer");
            if (offset < 0 || count < 0 || count > buffer.Length - offset)
                throw new ArgumentOutOfRangeException("count");
        }

        public override int Read(byte[] buffer, int offset, int count)
        {
            CheckRange(buffer, offset, count);
            if (!CanRead) throw new NotSupportedException("not open for reading");
            if (count == 0) return 0;
            using (Calls.Shared.Enter())
            {
                int read = Api.vlt_file_read(handle.Value, ref buffer[offset], count);
                if (read == 0 && Api.vlt_file_is_eof(handle.Value) != 1)
                    throw new VltException(Name + ": cannot be read");
                return read;
            }
        }

        public override void Write(byte[] buffer, int offset, int count)
        {
            CheckRange(buffer, offset, count);
            if (!CanWrite) throw new NotSupportedException("not open for writing");
            if (count == 0) return;
            using (Calls.Shared.Enter())
            {
                if (appends) Api.vlt_file_set_pos_eof(handle.Value);
                if (Api.vlt_file_write(handle.Value, ref buffer[offset], count) == 0)
                    throw new VltException(Name + ": cannot be written; a part may be stored");
            }
        }

        /// <summary>Moves the position; beyond the end means the end, for a file is made longer by writing
        /// alone.</summary>
        public override long Seek(long offset, SeekOrigin origin)
        {
            using (Calls.Shared.Enter())
            {
                long start = 0;
                if (origin == SeekOrigin.End) Api.vlt_file_set_pos_eof(handle.Value);
                if (origin != SeekOrigin.Begin) Api.vlt_file_get_pos(handle.Value, out start);
                if (start + offset < 0) throw new IOException("a negative position");
                if (Api.vlt_file_set_pos(handle.Value, start + offset) == 0) throw new VltException(Name + ": failed");
                Api.vlt_file_get_pos(handle.Value, out start);
                return start;
            }
        }

        public override void SetLength(long value) { throw new NotSupportedException("opened with FileMode.Create"); }

        public override void Flush() { }

        protected override void Dispose(bool disposing)
        {
            if (disposing) handle.Dispose();
            base.Dispose(disposing);
        }
    }

    /// <summary>Owns the record of a database, in memory that stays where it is.</summary>
    public sealed class DatabaseHandle : SafeHandle
    {
        internal DatabaseHandle() : base(IntPtr.Zero, true)
        {
            SetHandle(Marshal.AllocHGlobal(Marshal.SizeOf(typeof(KOfflineDb))));
            using (Calls.Shared.Enter()) Api.KOfflineDb_Constructor(handle);
        }

        public override bool IsInvalid { get { return handle == IntPtr.Zero; } }

        /// <summary>The address that the functions of the library take.</summary>
        public IntPtr Value
        {
            get
            {
                if (IsClosed) throw new ObjectDisposedException("Database");
                return handle;
            }
        }

        /// <summary>The record as it is now.</summary>
        public KOfflineDb Fields { get { return (KOfflineDb)Marshal.PtrToStructure(Value, typeof(KOfflineDb)); } }

        protected override bool ReleaseHandle()
        {
            using (Calls.Alone.Enter()) Api.KOfflineDb_Destructor(handle);
            Marshal.FreeHGlobal(handle);
            return true;
        }
    }

    /// <summary>A loaded database. It serves one thread at a time.</summary>
    public sealed class Database : IDisposable
    {
        readonly DatabaseHandle handle = new DatabaseHandle();

        public DatabaseHandle Handle { get { return handle; } }
        public Table Items { get; private set; }
        public Table Lines { get; private set; }
        public Table Drawings { get; private set; }
        public Table ItemDrawings { get; private set; }
        public Table Plans { get; private set; }
        public Table ItemPlans { get; private set; }

        /// <summary>Loads a database from a package file, which stays open, or from a folder.</summary>
        public Database(string path)
        {
            int loaded;
            using (Calls.Alone.Enter()) loaded = Api.KOfflineDb_Load(handle.Value, path);
            if (loaded == 0)
            {
                VltException error = Error();
                handle.Dispose();
                throw error;
            }
            Items = new Table(this, Api.KOfflineDb_GetTable_BITM);
            Lines = new Table(this, Api.KOfflineDb_GetTable_BBOM);
            Drawings = new Table(this, Api.KOfflineDb_GetTable_BDWG);
            ItemDrawings = new Table(this, Api.KOfflineDb_GetTable_BITDWG);
            Plans = new Table(this, Api.KOfflineDb_GetTable_BCAPP);
            ItemPlans = new Table(this, Api.KOfflineDb_GetTable_BITCAP);
        }

        public void Dispose() { handle.Dispose(); }

        internal VltException Error()
        {
            KOfflineDb fields = handle.Fields;
            return VltException.OfDatabase(fields.error_code, Calls.Text(fields.error_text));
        }

        /// <summary>Writes the database to where it came from, or into another folder.</summary>
        public void Save(string folder = null)
        {
            int saved;
            using (Calls.Shared.Enter())
                saved = folder == null ? Api.KOfflineDb_Save(handle.Value)
                    : Api.KOfflineDb_SaveAs(handle.Value, folder);
            if (saved == 0) throw Error();
        }

        /// <summary>The record number of the item with this NID, or -1.</summary>
        public int ItemByNid(int nid) { return Api.KOfflineDb_GetRecByNID_BITM(handle.Value, nid); }

        /// <summary>The record number of the item with this code, or -1.</summary>
        public int ItemByCode(string code) { return ItemByNid(Api.KOfflineDb_GetNIDByCCODE(handle.Value, code)); }

        /// <summary>The record numbers of the tops of the item tree.</summary>
        public int[] Roots()
        {
            var records = new int[Api.KOfflineDb_GetRootNodes(handle.Value, null, 0)];
            Api.KOfflineDb_GetRootNodes(handle.Value, records, records.Length);
            return records;
        }
    }

    /// <summary>One table of a database: records and fields are numbered from 0, fields are found by their
    /// names.</summary>
    public sealed class Table
    {
        readonly Database database;
        readonly Func<IntPtr, IntPtr> table;

        internal Table(Database database, Func<IntPtr, IntPtr> table)
        {
            this.database = database;
            this.table = table;
        }

        IntPtr Address { get { return table(database.Handle.Value); } }

        public int Count { get { return Api.KOfflineTable_GetRecsCount(Address); } }

        int Field(string name)
        {
            int field = Api.KOfflineTable_GetFldIndex(Address, name);
            if (field < 0) throw new ArgumentException("there is no field " + name);
            return field;
        }

        /// <summary>A value's text; null where the record has none.</summary>
        public string this[int record, string field]
        {
            get { return Marshal.PtrToStringAnsi(Api.KOfflineTable_GetFldValue(Address, record, Field(field))); }
            set
            {
                if (Api.KOfflineTable_SetFldValue(Address, record, Field(field), value) == 0) throw database.Error();
            }
        }

        /// <summary>A record's NID; -1 when it has none.</summary>
        public int Nid(int record) { return Api.KOfflineTable_GetRecNID(Address, record); }

        /// <summary>Adds a record with the next free NID and returns its number.</summary>
        public int Add()
        {
            int record = Api.KOfflineTable_AddRec(Address, "", Calls.Text(database.Handle.Fields.separator));
            if (record < 0) throw database.Error();
            return record;
        }

        /// <summary>Deletes a record; those after it move down by one.</summary>
        public void Delete(int record)
        {
            if (Api.KOfflineTable_DelRec(Address, record) == 0) throw new ArgumentOutOfRangeException("record");
        }

        /// <summary>The records whose field has this value, letter case of A to Z ignored; in their order.</summary>
        public int[] Search(string field, string value)
        {
            int number = Field(field);
            var records = new int[Math.Max(Api.KOfflineTable_Search(Address, number, value, null, 0), 0)];
            Api.KOfflineTable_Search(Address, number, value, records, records.Length);
            Array.Sort(records);
            return records;
        }
    }
}
