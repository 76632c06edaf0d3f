-- The parameters of the procedures that are C++, in the form of CREATE PROCEDURE. A procedure that is not listed here takes
-- any arguments. GO ends each.

CREATE PROCEDURE sp_unprepare
    @handle int
GO

CREATE PROCEDURE sp_sqlexec
    @statement nvarchar(max)
GO

CREATE PROCEDURE sp_detach_db
    @dbname sysname = NULL, @skipchecks nvarchar(10) = NULL, @keepfulltextindexfile nvarchar(10) = NULL
GO

CREATE PROCEDURE sp_attach_db
    @dbname sysname, @filename1 nvarchar(260), @filename2 nvarchar(260) = NULL, @filename3 nvarchar(260) = NULL,
    @filename4 nvarchar(260) = NULL, @filename5 nvarchar(260) = NULL, @filename6 nvarchar(260) = NULL,
    @filename7 nvarchar(260) = NULL, @filename8 nvarchar(260) = NULL, @filename9 nvarchar(260) = NULL,
    @filename10 nvarchar(260) = NULL, @filename11 nvarchar(260) = NULL, @filename12 nvarchar(260) = NULL,
    @filename13 nvarchar(260) = NULL, @filename14 nvarchar(260) = NULL, @filename15 nvarchar(260) = NULL,
    @filename16 nvarchar(260) = NULL
GO

CREATE PROCEDURE sp_dboption
    @dbname sysname = NULL, @optname varchar(35) = NULL, @optvalue varchar(10) = NULL
GO

CREATE PROCEDURE sp_renamedb
    @dbname sysname, @newname sysname
GO

CREATE PROCEDURE sp_addtype
    @typename sysname, @phystype sysname, @nulltype varchar(8) = NULL, @owner sysname = NULL
GO

CREATE PROCEDURE sp_droptype
    @typename sysname
GO

CREATE PROCEDURE sp_rename
    @objname nvarchar(1035), @newname sysname, @objtype varchar(13) = NULL
GO

CREATE PROCEDURE sp_helptext
    @objname nvarchar(776), @columnname sysname = NULL
GO

CREATE PROCEDURE sp_addlogin
    @loginame sysname, @passwd sysname = NULL, @defdb sysname = 'master', @deflanguage sysname = NULL,
    @sid varbinary(16) = NULL, @encryptopt varchar(20) = NULL
GO

CREATE PROCEDURE sp_droplogin
    @loginame sysname
GO

CREATE PROCEDURE sp_defaultdb
    @loginame sysname, @defdb sysname
GO

CREATE PROCEDURE sp_grantdbaccess
    @loginame sysname, @name_in_db sysname = NULL
GO

CREATE PROCEDURE sp_adduser
    @loginame sysname, @name_in_db sysname = NULL, @grpname sysname = NULL
GO

CREATE PROCEDURE sp_revokedbaccess
    @name_in_db sysname
GO

CREATE PROCEDURE sp_dropuser
    @name_in_db sysname
GO

CREATE PROCEDURE sp_addrole
    @rolename sysname, @ownername sysname = NULL
GO

CREATE PROCEDURE sp_droprole
    @rolename sysname
GO

CREATE PROCEDURE sp_addrolemember
    @rolename sysname, @membername sysname
GO

CREATE PROCEDURE sp_droprolemember
    @rolename sysname, @membername sysname
GO

CREATE PROCEDURE sp_addsrvrolemember
    @loginame sysname, @rolename sysname = NULL
GO

CREATE PROCEDURE sp_changedbowner
    @loginame sysname, @map varchar(5) = NULL
GO

CREATE PROCEDURE sp_configure
    @configname varchar(35) = NULL, @configvalue int = NULL
GO

CREATE PROCEDURE sp_helpdb
    @dbname sysname = NULL
GO

CREATE PROCEDURE sp_helpfile
    @filename sysname = NULL
GO

CREATE PROCEDURE sp_addextendedproperty
    @name sysname, @value nvarchar(3750) = NULL, @level0type varchar(128) = NULL, @level0name sysname = NULL,
    @level1type varchar(128) = NULL, @level1name sysname = NULL, @level2type varchar(128) = NULL,
    @level2name sysname = NULL
GO

CREATE PROCEDURE sp_updateextendedproperty
    @name sysname, @value nvarchar(3750) = NULL, @level0type varchar(128) = NULL, @level0name sysname = NULL,
    @level1type varchar(128) = NULL, @level1name sysname = NULL, @level2type varchar(128) = NULL,
    @level2name sysname = NULL
GO

CREATE PROCEDURE sp_dropextendedproperty
    @name sysname, @level0type varchar(128) = NULL, @level0name sysname = NULL, @level1type varchar(128) = NULL,
    @level1name sysname = NULL, @level2type varchar(128) = NULL, @level2name sysname = NULL
GO

CREATE PROCEDURE sp_addlinkedserver
    @server sysname, @srvproduct nvarchar(128) = NULL, @provider nvarchar(128) = NULL,
    @datasrc nvarchar(4000) = NULL, @location nvarchar(4000) = NULL, @provstr nvarchar(4000) = NULL,
    @catalog sysname = NULL
GO

CREATE PROCEDURE sp_dropserver
    @server sysname, @droplogins char(10) = NULL
GO

CREATE PROCEDURE sp_addlinkedsrvlogin
    @rmtsrvname sysname, @useself varchar(8) = 'true', @locallogin sysname = NULL, @rmtuser sysname = NULL,
    @rmtpassword sysname = NULL
GO

CREATE PROCEDURE sp_droplinkedsrvlogin
    @rmtsrvname sysname, @locallogin sysname = NULL
GO

CREATE PROCEDURE sp_serveroption
    @server sysname, @optname varchar(35), @optvalue nvarchar(128)
GO

CREATE PROCEDURE sp_linkedservers
GO

CREATE PROCEDURE sp_helpserver
    @server sysname = NULL, @optname varchar(35) = NULL, @show_topology varchar(1) = NULL
GO

CREATE PROCEDURE sp_adddistributor
    @distributor sysname, @heartbeat_interval int = 10, @password sysname = NULL, @from_scripting bit = 0
GO

CREATE PROCEDURE sp_adddistributiondb
    @database sysname, @data_folder nvarchar(255) = NULL, @data_file nvarchar(255) = NULL,
    @data_file_size int = NULL, @log_folder nvarchar(255) = NULL, @log_file nvarchar(255) = NULL,
    @log_file_size int = NULL, @min_distretention int = 0, @max_distretention int = 72,
    @history_retention int = 48, @security_mode int = 1, @login sysname = NULL, @password sysname = NULL,
    @createmode int = 1, @from_scripting bit = 0
GO

CREATE PROCEDURE sp_adddistpublisher
    @publisher sysname, @distribution_db sysname, @security_mode int = 1, @login sysname = NULL,
    @password sysname = NULL, @working_directory nvarchar(255) = NULL, @trusted nvarchar(5) = NULL,
    @encrypted_password bit = 0, @thirdparty_flag bit = 0, @publisher_type sysname = NULL
GO

CREATE PROCEDURE sp_dropdistributor
    @no_checks bit = 0, @ignore_distributor bit = 0
GO

CREATE PROCEDURE sp_addsubscriber
    @subscriber sysname, @type tinyint = 0, @login sysname = NULL, @password nvarchar(524) = NULL,
    @commit_batch_size int = 100, @status_batch_size int = 100, @flush_frequency int = 0,
    @frequency_type int = NULL, @frequency_interval int = NULL, @frequency_relative_interval int = NULL,
    @frequency_recurrence_factor int = NULL, @frequency_subday int = NULL,
    @frequency_subday_interval int = NULL, @active_start_time_of_day int = NULL,
    @active_end_time_of_day int = NULL, @active_start_date int = NULL, @active_end_date int = NULL,
    @description nvarchar(255) = NULL, @security_mode int = 1, @encrypted_password bit = 0,
    @publisher sysname = NULL
GO

CREATE PROCEDURE sp_replicationdboption
    @dbname sysname, @optname sysname, @value sysname, @ignore_distributor bit = 0, @from_scripting bit = 0
GO

CREATE PROCEDURE sp_addpublication
    @publication sysname, @taskid int = 0, @restricted nvarchar(10) = 'false',
    @sync_method nvarchar(40) = 'native', @repl_freq nvarchar(10) = 'continuous',
    @description nvarchar(255) = NULL, @status nvarchar(8) = 'inactive',
    @independent_agent nvarchar(5) = 'false', @immediate_sync nvarchar(5) = 'false',
    @enabled_for_internet nvarchar(5) = 'false', @allow_push nvarchar(5) = 'true',
    @allow_pull nvarchar(5) = 'false', @allow_anonymous nvarchar(5) = 'false',
    @allow_sync_tran nvarchar(5) = 'false', @autogen_sync_procs nvarchar(5) = 'true', @retention int = 336,
    @allow_queued_tran nvarchar(5) = 'false', @snapshot_in_defaultfolder nvarchar(5) = 'true',
    @alt_snapshot_folder nvarchar(255) = NULL, @pre_snapshot_script nvarchar(255) = NULL,
    @post_snapshot_script nvarchar(255) = NULL, @compress_snapshot nvarchar(5) = 'false',
    @ftp_address sysname = NULL, @ftp_port int = 21, @ftp_subdirectory nvarchar(255) = NULL,
    @ftp_login sysname = 'anonymous', @ftp_password sysname = NULL, @allow_dts nvarchar(5) = 'false',
    @allow_subscription_copy nvarchar(5) = 'false', @conflict_policy nvarchar(100) = NULL,
    @centralized_conflicts nvarchar(5) = NULL, @conflict_retention int = 14, @queue_type nvarchar(10) = NULL,
    @add_to_active_directory nvarchar(10) = 'false', @logreader_job_name sysname = NULL,
    @qreader_job_name sysname = NULL, @publisher sysname = NULL,
    @allow_initialize_from_backup nvarchar(5) = NULL, @replicate_ddl int = 1,
    @enabled_for_p2p nvarchar(5) = 'false', @publish_local_changes_only nvarchar(5) = 'false',
    @enabled_for_het_sub nvarchar(5) = 'false'
GO

CREATE PROCEDURE sp_addpublication_snapshot
    @publication sysname, @frequency_type int = NULL, @frequency_interval int = NULL,
    @frequency_relative_interval int = NULL, @frequency_recurrence_factor int = NULL,
    @frequency_subday int = NULL, @frequency_subday_interval int = NULL, @active_start_time_of_day int = NULL,
    @active_end_time_of_day int = NULL, @active_start_date int = NULL, @active_end_date int = NULL,
    @snapshot_job_name nvarchar(100) = NULL, @publisher_security_mode int = NULL,
    @publisher_login sysname = NULL, @publisher_password sysname = NULL, @job_login nvarchar(257) = NULL,
    @job_password sysname = NULL, @publisher sysname = NULL
GO

CREATE PROCEDURE sp_droppublication
    @publication sysname, @ignore_distributor bit = 0, @publisher sysname = NULL, @from_backup bit = 0
GO

CREATE PROCEDURE sp_addarticle
    @publication sysname, @article sysname, @source_table nvarchar(386) = NULL,
    @destination_table sysname = NULL, @vertical_partition nchar(5) = 'false', @type sysname = NULL,
    @filter nvarchar(386) = NULL, @sync_object nvarchar(386) = NULL, @ins_cmd nvarchar(255) = NULL,
    @del_cmd nvarchar(255) = NULL, @upd_cmd nvarchar(255) = NULL, @creation_script nvarchar(255) = NULL,
    @description nvarchar(255) = NULL, @pre_creation_cmd nvarchar(10) = 'drop', @filter_clause ntext = NULL,
    @schema_option varbinary(8) = NULL, @destination_owner sysname = NULL, @status tinyint = 16,
    @source_owner sysname = NULL, @sync_object_owner sysname = NULL, @filter_owner sysname = NULL,
    @source_object sysname = NULL, @artid int = NULL OUTPUT, @auto_identity_range nvarchar(5) = NULL,
    @pub_identity_range bigint = NULL, @identity_range bigint = NULL, @threshold int = NULL,
    @force_invalidate_snapshot bit = 0, @use_default_datatypes bit = 1,
    @identityrangemanagementoption nvarchar(10) = NULL, @publisher sysname = NULL,
    @fire_triggers_on_snapshot nvarchar(5) = 'false'
GO

CREATE PROCEDURE sp_addsubscription
    @publication sysname, @article sysname = 'all', @subscriber sysname = NULL, @destination_db sysname = NULL,
    @sync_type nvarchar(255) = 'automatic', @status sysname = NULL, @subscription_type nvarchar(4) = 'push',
    @update_mode nvarchar(30) = 'read only', @loopback_detection nvarchar(5) = NULL, @frequency_type int = NULL,
    @frequency_interval int = NULL, @frequency_relative_interval int = NULL,
    @frequency_recurrence_factor int = NULL, @frequency_subday int = NULL,
    @frequency_subday_interval int = NULL, @active_start_time_of_day int = NULL,
    @active_end_time_of_day int = NULL, @active_start_date int = NULL, @active_end_date int = NULL,
    @optional_command_line nvarchar(4000) = NULL, @reserved nvarchar(10) = NULL,
    @enabled_for_syncmgr nvarchar(5) = 'false', @offloadagent bit = 0, @offloadserver sysname = NULL,
    @dts_package_name sysname = NULL, @dts_package_password sysname = NULL,
    @dts_package_location nvarchar(12) = NULL, @distribution_job_name sysname = NULL, @publisher sysname = NULL,
    @backupdevicetype nvarchar(20) = NULL, @backupdevicename nvarchar(1000) = NULL,
    @mediapassword sysname = NULL, @password sysname = NULL, @fileidhint int = NULL, @unload bit = 1,
    @subscriptionlsn binary(10) = NULL, @subscriptionstreams tinyint = NULL, @subscriber_type tinyint = 0
GO

CREATE PROCEDURE sp_dropsubscription
    @publication sysname, @article sysname = NULL, @subscriber sysname, @destination_db sysname = NULL,
    @ignore_distributor bit = 0, @reserved nvarchar(10) = NULL
GO
